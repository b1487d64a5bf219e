// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/CookieScope.h"
#include "pdf/Handles.h"
#include "pdf/PDFAnnotation.h"
#include "pdf/PDFDocument.h"
#include "pdf/PDFPage.h"

// What a page does with its annotations.
namespace pdf {

std::vector<std::shared_ptr<PDFAnnotation>> PDFPage::annotations()
{
    const std::lock_guard lock(m_handle->document.mutex);
    CookieScope scope{Cancellation()};
    AnnotationStore& store = m_handle->document.annotations;
    // What could not be written waits for the next attempt; the others are there all the same.
    static_cast<void>(store.flush(scope));
    return store.annotations(scope, index(), m_document);
}

void PDFPage::addAnnotation(const std::shared_ptr<PDFAnnotation>& annotation)
{
    {
        const std::lock_guard lock(annotation->m_mutex);
        if (annotation->m_pageIndex >= 0 || !annotation->m_isOwn)
            return;
        annotation->m_document = m_document;
        annotation->m_pageIndex = index();
    }
    m_document->noteChange(annotation, index());
}

void PDFPage::removeAnnotation(const std::shared_ptr<PDFAnnotation>& annotation)
{
    {
        const std::lock_guard lock(annotation->m_mutex);
        if (annotation->m_pageIndex != index() || annotation->m_document.lock() != m_document)
            return;
        annotation->m_pageIndex = -1;
    }
    m_document->noteChange(annotation, index());
}

} // namespace pdf
