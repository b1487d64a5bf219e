// SPDX-License-Identifier: AGPL-3.0-or-later
#include "writer/Document.h"

#include "writer/PageTree.h"

#include <algorithm>

namespace samples {
namespace {

std::string destination(const Page& page, double top)
{
    return "[" + reference(page.ref) + "/XYZ 0 " + number(top) + " null]";
}

std::string linkObject(const Box& area, const std::string& target)
{
    return "<</Type/Annot/Subtype/Link/F 4/Border[0 0 0]/Rect" +
           numbers({area.x, area.y, area.right(), area.top()}) + target + ">>";
}

} // namespace

Document::Document(const Information& information)
    : m_information(information)
{
    for (std::size_t i = 0; i < m_standardFonts.size(); ++i)
        m_standardFonts[i] = std::make_unique<StandardFont>(static_cast<Typeface>(i));
}

Font* Document::standardFont(Typeface face) const
{
    return m_standardFonts[static_cast<std::size_t>(face)].get();
}

Font* Document::adopt(std::unique_ptr<Font> font)
{
    return m_otherFonts.emplace_back(std::move(font)).get();
}

Page& Document::addPage(const PageSize& size)
{
    Page& page = m_pages.emplace_back();
    page.size = size;
    page.ref = m_file.reserve();
    return page;
}

void Document::addOutlineEntry(int level, std::string_view title, const Page& page, double top)
{
    m_outline.push_back({level, std::string(title), destination(page, top)});
}

void Document::addLink(Page& page, const Box& area, const Page& target, double top)
{
    page.annotations.push_back(m_file.add(linkObject(area, "/Dest" + destination(target, top))));
}

void Document::addLink(Page& page, const Box& area, std::string_view address)
{
    page.annotations.push_back(
        m_file.add(linkObject(area, "/A<</Type/Action/S/URI/URI" + literal(address) + ">>")));
}

std::string Document::finish()
{
    const PdfFile::Ref pages =
        writePageTree(m_file, m_pages.size(), [this](std::size_t index, PdfFile::Ref parent) {
            writePage(m_pages[index], parent);
            return m_pages[index].ref;
        });
    std::string catalog = "<</Type/Catalog/Pages " + reference(pages) + "/Lang" +
                          literal(m_information.language) + "/ViewerPreferences<</DisplayDocTitle true>>";
    if (!m_outline.empty())
        catalog += "/PageMode/UseOutlines/Outlines " + reference(writeOutline());
    const PdfFile::Ref root = m_file.add(catalog + m_catalogEntries + ">>");
    const PdfFile::Ref information = m_file.add(
        "<</Title" + textString(m_information.title) + "/Author" + textString(m_information.author) +
        "/Producer(Quillo samples)/CreationDate(D:20260105090000Z)/ModDate(D:20260105090000Z)>>");
    return m_file.finish(root, information);
}

PdfFile::Ref Document::fontObject(Font* font)
{
    const auto known = std::find_if(m_fontObjects.begin(), m_fontObjects.end(), [font](const auto& entry) {
        return entry.first == font;
    });
    if (known != m_fontObjects.end())
        return known->second;
    const PdfFile::Ref ref = font->write(m_file);
    m_fontObjects.emplace_back(font, ref);
    return ref;
}

void Document::writePage(Page& page, PdfFile::Ref parent)
{
    std::string resources = "<</Font<<";
    int fontNumber = 0;
    for (Font* font : page.canvas.fonts())
        resources += "/F" + std::to_string(++fontNumber) + " " + reference(fontObject(font));
    resources += ">>/XObject<<";
    for (const auto& [name, ref] : page.objects)
        resources += "/" + name + " " + reference(ref);
    resources += ">>>>";

    const PdfFile::Ref content = m_file.addStream("", page.canvas.content(), PdfFile::Compression::none);
    std::string object = "<</Type/Page/Parent " + reference(parent) + "/MediaBox" +
                         numbers({0, 0, page.size.width, page.size.height}) + "/Resources" + resources +
                         "/Contents " + reference(content);
    if (!page.annotations.empty())
        object += "/Annots" + references(page.annotations);
    m_file.set(page.ref, object + ">>");
}

PdfFile::Ref Document::writeOutline()
{
    const std::size_t count = m_outline.size();
    const PdfFile::Ref root = m_file.reserve();
    std::vector<PdfFile::Ref> refs(count);
    std::generate(refs.begin(), refs.end(), [this] { return m_file.reserve(); });

    // An entry's children are the entries after it that are one level deeper, up to the next that is not
    // deeper.
    const auto childrenOf = [this, count](std::size_t first, int level) {
        std::vector<std::size_t> children;
        for (std::size_t i = first; i < count && m_outline[i].level >= level; ++i) {
            if (m_outline[i].level == level)
                children.push_back(i);
        }
        return children;
    };
    const auto writeChildren = [&](const std::vector<std::size_t>& children, PdfFile::Ref parent) {
        for (std::size_t i = 0; i < children.size(); ++i) {
            const OutlineEntry& entry = m_outline[children[i]];
            const auto below = childrenOf(children[i] + 1, entry.level + 1);
            std::string object = "<</Title" + textString(entry.title) + "/Parent " + reference(parent) +
                                 "/Dest" + entry.destination;
            if (i > 0)
                object += "/Prev " + reference(refs[children[i - 1]]);
            if (i + 1 < children.size())
                object += "/Next " + reference(refs[children[i + 1]]);
            if (!below.empty())
                object += "/First " + reference(refs[below.front()]) + "/Last " +
                          reference(refs[below.back()]) +
                          // Negative: the entry starts closed.
                          "/Count -" + std::to_string(below.size());
            m_file.set(refs[children[i]], object + ">>");
        }
    };

    const auto top = childrenOf(0, 0);
    writeChildren(top, root);
    for (std::size_t i = 0; i < count; ++i)
        writeChildren(childrenOf(i + 1, m_outline[i].level + 1), refs[i]);
    m_file.set(
        root, "<</Type/Outlines/First " + reference(refs[top.front()]) + "/Last " +
                  reference(refs[top.back()]) + "/Count " + std::to_string(top.size()) + ">>");
    return root;
}

} // namespace samples
