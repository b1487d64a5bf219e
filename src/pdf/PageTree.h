// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <mupdf/pdf.h>

#include <memory>
#include <vector>

namespace pdf {

/// Finds page objects in a document's page tree and reads no more of the tree than it has to, so that the
/// last of 20,000 pages costs as much as the first. Where a node counts its pages wrongly, the whole tree is
/// walked once and every page that is really there gets its number by its position. Where there is no tree at
/// all, the pages are the objects that call themselves so.
///
/// All functions run within engine::attempt and under the document's lock.
class PageTree
{
public:
    PageTree();
    ~PageTree();
    PageTree(const PageTree&) = delete;
    PageTree& operator=(const PageTree&) = delete;

    /// Reads the root of the tree. May throw as MuPDF does.
    void load(fz_context* ctx, pdf_document* document);
    /// Gives the objects back; to be called before the document is dropped. Never throws.
    void clear(fz_context* ctx);

    int pageCount() const { return m_pageCount; }

    /// Whether the document has no tree, and its pages are the objects that call themselves so.
    bool isMissing() const { return !m_root && !m_pages.empty(); }
    /// Gives the document a tree where it has none, for programs that look for no pages outside of it. May
    /// throw as MuPDF does.
    void plant(fz_context* ctx);

    /// The page's dictionary, borrowed, or null when there is none at this index. May throw as MuPDF does.
    pdf_obj* find(fz_context* ctx, int index);

    /// The index of a page's dictionary, or -1 when it is no page of the tree. May throw as MuPDF does.
    int indexOf(fz_context* ctx, pdf_obj* page);

private:
    struct Node;

    void addPage(fz_context* ctx, pdf_obj* page);
    void dropPages(fz_context* ctx);
    bool expand(fz_context* ctx, Node& node);
    pdf_obj* descend(fz_context* ctx, int index, bool* contradiction);
    void collectStrays(fz_context* ctx);
    void walk(fz_context* ctx);
    void walkNode(fz_context* ctx, pdf_obj* node, int depth, pdf_mark_bits* seen);

    pdf_document* m_document = nullptr;
    std::unique_ptr<Node> m_root;
    int m_pageCount = 0;

    bool m_isWalked = false;
    std::vector<pdf_obj*> m_pages;
};

} // namespace pdf
