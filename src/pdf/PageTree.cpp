// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/PageTree.h"

#include "pdf/Engine.h"
#include "pdf/Limits.h"

#include <algorithm>

namespace pdf {
namespace {

bool isTreeNode(fz_context* ctx, pdf_obj* object)
{
    // Some writers leave the types out or mix them up; only an inner node has kids.
    return pdf_is_array(ctx, pdf_dict_get(ctx, object, PDF_NAME(Kids))) &&
           !pdf_name_eq(ctx, pdf_dict_get(ctx, object, PDF_NAME(Type)), PDF_NAME(Page));
}

bool isPage(fz_context* ctx, pdf_obj* object)
{
    return pdf_is_dict(ctx, object) &&
           pdf_name_eq(ctx, pdf_dict_get(ctx, object, PDF_NAME(Type)), PDF_NAME(Page));
}

int claimedCount(fz_context* ctx, pdf_obj* object)
{
    return std::max(0, pdf_dict_get_int(ctx, object, PDF_NAME(Count)));
}

/// The page under an object that should be one page: itself, or the only one of a branch.
pdf_obj* onlyPage(fz_context* ctx, pdf_obj* object, bool* contradiction)
{
    for (int depth = 0; depth < limits::pageTreeDepth; ++depth) {
        if (!isTreeNode(ctx, object))
            return pdf_is_dict(ctx, object) ? object : nullptr;
        pdf_obj* kids = pdf_dict_get(ctx, object, PDF_NAME(Kids));
        if (claimedCount(ctx, object) != 1 || pdf_array_len(ctx, kids) != 1)
            break;
        object = pdf_array_get(ctx, kids, 0);
    }
    *contradiction = true;
    return nullptr;
}

/// Makes the page a child of the tree. What it had from parents of its own becomes its own.
void adopt(fz_context* ctx, pdf_obj* page, pdf_obj* tree)
{
    for (pdf_obj* key : {PDF_NAME(Resources), PDF_NAME(MediaBox), PDF_NAME(CropBox), PDF_NAME(Rotate)}) {
        pdf_obj* value = pdf_dict_get_inheritable(ctx, page, key);
        if (value && !pdf_dict_get(ctx, page, key))
            pdf_dict_put(ctx, page, key, value);
    }
    pdf_dict_put(ctx, page, PDF_NAME(Parent), tree);
}

} // namespace

struct PageTree::Node
{
    pdf_obj* object = nullptr;
    int firstPage = 0;
    int pageCount = 0;
    bool isLeaf = false;
    bool isExpanded = false;
    /// As many kids as pages: each kid is one page, which can be fetched without looking at the others.
    bool isFlat = false;
    std::vector<Node> kids;

    void clear(fz_context* ctx)
    {
        clearKids(ctx);
        pdf_drop_obj(ctx, object);
    }

    void clearKids(fz_context* ctx)
    {
        for (Node& kid : kids)
            kid.clear(ctx);
        kids.clear();
    }
};

PageTree::PageTree() = default;
PageTree::~PageTree() = default;

void PageTree::load(fz_context* ctx, pdf_document* document)
{
    clear(ctx);
    m_document = document;
    pdf_obj* root = pdf_dict_getp(ctx, pdf_trailer(ctx, document), "Root/Pages");
    if (!isTreeNode(ctx, root) && !isPage(ctx, root)) {
        collectStrays(ctx);
        if (m_pages.empty())
            fz_throw(ctx, FZ_ERROR_GENERIC, "the document has no pages tree");
        return;
    }
    m_root = std::make_unique<Node>();
    m_root->object = pdf_keep_obj(ctx, root);
    m_root->pageCount = pdf_dict_get_int(ctx, root, PDF_NAME(Count));
    m_pageCount = m_root->pageCount;
    // Every page is an object of its own.
    const bool isPlausible = m_pageCount > 0 && m_pageCount <= pdf_xref_len(ctx, document);
    if (!isPlausible || !expand(ctx, *m_root)) {
        walk(ctx);
        m_pageCount = static_cast<int>(m_pages.size());
    }
}

void PageTree::addPage(fz_context* ctx, pdf_obj* page)
{
    engine::translated(ctx, [&] { m_pages.push_back(page); });
    pdf_keep_obj(ctx, page);
}

void PageTree::dropPages(fz_context* ctx)
{
    for (pdf_obj* page : m_pages)
        pdf_drop_obj(ctx, page);
    m_pages.clear();
}

/// Without a tree, the pages are all objects that say they are pages, in the order of their numbers.
void PageTree::collectStrays(fz_context* ctx)
{
    m_isWalked = true;
    const int objectCount = pdf_xref_len(ctx, m_document);
    for (int number = 1; number < objectCount; ++number) {
        pdf_obj* object = nullptr;
        fz_var(object);
        fz_try(ctx)
        {
            object = pdf_new_indirect(ctx, m_document, number, 0);
            if (isPage(ctx, object))
                addPage(ctx, object);
        }
        fz_always(ctx)
        {
            pdf_drop_obj(ctx, object);
        }
        fz_catch(ctx)
        {
            engine::rethrowUnlessDamage(ctx);
        }
    }
    m_pageCount = static_cast<int>(m_pages.size());
}

void PageTree::plant(fz_context* ctx)
{
    pdf_obj* catalog = pdf_dict_get(ctx, pdf_trailer(ctx, m_document), PDF_NAME(Root));
    if (!isMissing() || !pdf_is_dict(ctx, catalog))
        return;
    pdf_obj* tree = pdf_add_new_dict(ctx, m_document, 3);
    fz_try(ctx)
    {
        pdf_dict_put(ctx, tree, PDF_NAME(Type), PDF_NAME(Pages));
        pdf_dict_put_int(ctx, tree, PDF_NAME(Count), m_pageCount);
        pdf_obj* kids = pdf_dict_put_array(ctx, tree, PDF_NAME(Kids), m_pageCount);
        for (pdf_obj* page : m_pages) {
            pdf_array_push(ctx, kids, page);
            adopt(ctx, page, tree);
        }
        pdf_dict_put(ctx, catalog, PDF_NAME(Pages), tree);
    }
    fz_always(ctx)
    {
        pdf_drop_obj(ctx, tree);
    }
    fz_catch(ctx)
    {
        fz_rethrow(ctx);
    }
}

void PageTree::clear(fz_context* ctx)
{
    dropPages(ctx);
    m_isWalked = false;
    m_pageCount = 0;
    if (m_root)
        m_root->clear(ctx);
    m_root.reset();
}

pdf_obj* PageTree::find(fz_context* ctx, int index)
{
    if (index < 0 || index >= m_pageCount)
        return nullptr;
    if (!m_isWalked) {
        bool contradiction = false;
        pdf_obj* page = descend(ctx, index, &contradiction);
        if (!contradiction)
            return page;
        walk(ctx);
    }
    const auto position = static_cast<std::size_t>(index);
    return position < m_pages.size() ? m_pages[position] : nullptr;
}

int PageTree::indexOf(fz_context* ctx, pdf_obj* page)
{
    if (!pdf_is_dict(ctx, page))
        return -1;
    if (!m_isWalked) {
        const int index = pdf_lookup_page_number(ctx, m_document, page);
        // Where the tree counts wrongly, its number is that of another page.
        pdf_obj* found = find(ctx, index);
        if (found && pdf_objcmp_resolve(ctx, found, page) == 0)
            return index;
        if (!m_isWalked)
            return -1;
    }
    const auto place = std::find_if(m_pages.begin(), m_pages.end(), [&](pdf_obj* other) {
        return pdf_objcmp_resolve(ctx, other, page) == 0;
    });
    return place == m_pages.end() ? -1 : static_cast<int>(place - m_pages.begin());
}

/// Looks at the node's kids; false when they do not add up to the pages that the node should have.
bool PageTree::expand(fz_context* ctx, Node& node)
{
    pdf_obj* kids = pdf_dict_get(ctx, node.object, PDF_NAME(Kids));
    const int kidCount = pdf_array_len(ctx, kids);
    // What is left of an attempt that failed.
    node.clearKids(ctx);
    node.isFlat = kidCount == node.pageCount;
    int pagesBefore = 0;
    for (int i = 0; i < kidCount && !node.isFlat; ++i) {
        pdf_obj* kid = pdf_array_get(ctx, kids, i);
        const bool isLeaf = !isTreeNode(ctx, kid);
        const int pageCount = isLeaf ? 1 : claimedCount(ctx, kid);
        if (pageCount > node.pageCount - pagesBefore)
            return false;
        if (pageCount > 0) {
            node.kids.push_back({kid, node.firstPage + pagesBefore, pageCount, isLeaf, false, false, {}});
            pdf_keep_obj(ctx, kid);
        }
        pagesBefore += pageCount;
    }
    node.isExpanded = node.isFlat || pagesBefore == node.pageCount;
    return node.isExpanded;
}

pdf_obj* PageTree::descend(fz_context* ctx, int index, bool* contradiction)
{
    Node* node = m_root.get();
    for (int depth = 0; depth < limits::pageTreeDepth; ++depth) {
        if (!node->isExpanded && !expand(ctx, *node))
            break;
        if (node->isFlat) {
            pdf_obj* kids = pdf_dict_get(ctx, node->object, PDF_NAME(Kids));
            return onlyPage(ctx, pdf_array_get(ctx, kids, index - node->firstPage), contradiction);
        }
        const auto after =
            std::upper_bound(node->kids.begin(), node->kids.end(), index, [](int page, const Node& kid) {
                return page < kid.firstPage;
            });
        node = &*std::prev(after);
        if (node->isLeaf)
            return pdf_is_dict(ctx, node->object) ? node->object : nullptr;
    }
    *contradiction = true;
    return nullptr;
}

void PageTree::walk(fz_context* ctx)
{
    pdf_mark_bits* seen = pdf_new_mark_bits(ctx, m_document);
    fz_try(ctx)
    {
        walkNode(ctx, m_root->object, 0, seen);
    }
    fz_always(ctx)
    {
        pdf_drop_mark_bits(ctx, seen);
    }
    fz_catch(ctx)
    {
        // A part would pass for all there is.
        dropPages(ctx);
        fz_rethrow(ctx);
    }
    m_isWalked = true;
}

void PageTree::walkNode(fz_context* ctx, pdf_obj* node, int depth, pdf_mark_bits* seen)
{
    if (depth > limits::pageTreeDepth)
        return;
    if (!isTreeNode(ctx, node)) {
        if (pdf_is_dict(ctx, node))
            addPage(ctx, node);
        return;
    }
    if (pdf_is_indirect(ctx, node) && pdf_mark_bits_set(ctx, seen, node))
        return;
    pdf_obj* kids = pdf_dict_get(ctx, node, PDF_NAME(Kids));
    const int kidCount = pdf_array_len(ctx, kids);
    for (int i = 0; i < kidCount; ++i)
        walkNode(ctx, pdf_array_get(ctx, kids, i), depth + 1, seen);
}

} // namespace pdf
