// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdfview/PageContent.h"

#include "pdf/PDFDocument.h"
#include "pdf/PDFPage.h"

#include <utility>

namespace pdf {
namespace {

/// A page is shown whole or not at all.
void refuseChangedFile(const PDFDocument& document, PageContent& page)
{
    page.isFileChanged = !document.isFileReadable();
    if (page.isFileChanged)
        page.content.reset();
}

} // namespace

PageContent readPage(PDFDocument& document, int index, const Cancellation& cancellation)
{
    PageContent result;
    result.page = index;
    const auto page = document.page(index);
    if (page) {
        result.size = page->displaySize();
        result.pageToDisplay = page->pageToDisplay();
        if (auto list = page->contentDisplayList(cancellation))
            result.content = std::move(*list);
        // A page whose annotations are broken is shown without them.
        if (auto list = page->annotationDisplayList(cancellation))
            result.annotations = std::move(*list);
    }
    refuseChangedFile(document, result);
    return result;
}

PageContent readAnnotations(PDFDocument& document, const PageContent& old, const Cancellation& cancellation)
{
    PageContent result = old;
    result.annotations.reset();
    if (const auto page = document.page(old.page)) {
        if (auto list = page->annotationDisplayList(cancellation))
            result.annotations = std::move(*list);
    }
    refuseChangedFile(document, result);
    return result;
}

} // namespace pdf
