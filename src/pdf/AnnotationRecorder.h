// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "pdf/AnnotationLog.h"
#include "pdf/CookieScope.h"
#include "pdf/PDFError.h"
#include "pdf/RecordedList.h"

#include <mupdf/pdf.h>

#include <cstddef>
#include <list>
#include <memory>
#include <optional>
#include <unordered_map>
#include <vector>

namespace pdf {

class DocumentHandle;
class PageHandle;

/// Records the annotations of pages, each in a list of its own, and keeps the lists of the pages that were
/// asked for last: of a page on which one annotation moves, however many there are, only that one is recorded
/// anew. What was recorded stays when an operation is cancelled, and the next one goes on from there. Under
/// the document's lock.
class AnnotationRecorder
{
public:
    explicit AnnotationRecorder(DocumentHandle& document);

    /// The page's annotations and form fields as they are now.
    Result<std::shared_ptr<const DisplayListHandle>> record(PageHandle& page, CookieScope& scope);

    /// To be called before the document is dropped.
    void clear();

private:
    struct Piece
    {
        /// Lives as long as its page.
        pdf_annot* annotation = nullptr;
        /// Of its object; 0 for none.
        int number = 0;
        /// Null while it is to be recorded.
        std::shared_ptr<const RecordedList> list;
    };
    struct Page
    {
        int index = -1;
        pdf_page* page = nullptr;
        /// The pieces without a list have changed since, and others have not.
        AnnotationLog::Stamp stamp = 0;
        std::vector<Piece> pieces;
        /// Of the pieces, by number.
        std::unordered_map<int, std::size_t> places;
        /// The lists of so many pieces each; null where one of them is to be recorded.
        std::vector<std::shared_ptr<const ListGroup>> groups;
    };

    Page& find(int index);
    bool dropChanged(Page& page, CookieScope& scope) const;
    std::optional<PDFError> load(Page& page, PageHandle& handle, CookieScope& scope) const;
    static std::optional<PDFError> record(Page& page, std::size_t group, fz_rect area, CookieScope& scope);
    static std::optional<PDFError> record(Piece& piece, fz_rect area, CookieScope& scope);

    DocumentHandle& m_document;
    /// The one that was asked for last first.
    std::list<Page> m_pages;
};

} // namespace pdf
