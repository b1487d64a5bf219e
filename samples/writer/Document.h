// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "writer/Canvas.h"
#include "writer/PdfFile.h"
#include "writer/StandardFont.h"

#include <array>
#include <deque>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace samples {

/// Page sizes in points.
struct PageSize
{
    double width = 0;
    double height = 0;
};
constexpr PageSize a4 = {595, 842};
constexpr PageSize letter = {612, 792};

struct Page
{
    PageSize size;
    PdfFile::Ref ref = 0;
    Canvas canvas;
    /// Link and widget annotations.
    std::vector<PdfFile::Ref> annotations;
    /// Image and form objects by the names that the content uses.
    std::vector<std::pair<std::string, PdfFile::Ref>> objects;
};

/// A document that is made page by page and written at the end.
class Document
{
public:
    struct Information
    {
        std::string_view title;
        std::string_view author;
        /// A language tag such as "en-US".
        std::string_view language;
    };

    explicit Document(const Information& information);

    PdfFile& file() { return m_file; }
    Font* standardFont(Typeface face) const;
    /// Keeps the font until the document is written.
    Font* adopt(std::unique_ptr<Font> font);

    /// The page stays where it is until the document is written.
    Page& addPage(const PageSize& size);

    /// An entry of the outline that shows the page from this height on. Level 0 is the outermost; an entry
    /// belongs to the last one before it whose level is lower by one.
    void addOutlineEntry(int level, std::string_view title, const Page& page, double top);

    /// A clickable area that shows another page of the document from this height on.
    void addLink(Page& page, const Box& area, const Page& target, double top);
    /// A clickable area that opens a web address.
    void addLink(Page& page, const Box& area, std::string_view address);

    /// More entries of the catalog, such as the one of an interactive form.
    void addToCatalog(std::string_view entries) { m_catalogEntries += entries; }

    /// The whole file. To be called once.
    std::string finish();

private:
    struct OutlineEntry
    {
        int level;
        std::string title;
        std::string destination;
    };

    PdfFile::Ref fontObject(Font* font);
    void writePage(Page& page, PdfFile::Ref parent);
    PdfFile::Ref writeOutline();

    Information m_information;
    PdfFile m_file;
    std::array<std::unique_ptr<Font>, 5> m_standardFonts;
    std::vector<std::unique_ptr<Font>> m_otherFonts;
    std::vector<std::pair<Font*, PdfFile::Ref>> m_fontObjects;
    std::deque<Page> m_pages;
    std::vector<OutlineEntry> m_outline;
    std::string m_catalogEntries;
};

} // namespace samples
