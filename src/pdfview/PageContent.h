// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "pdf/Cancellation.h"
#include "pdf/PDFDisplayList.h"

#include <QSizeF>
#include <QTransform>

#include <cstddef>
#include <optional>

namespace pdf {

class PDFDocument;

/// The drawing operations of a page. Without content when the page cannot be shown.
struct PageContent
{
    int page = 0;
    QSizeF size;
    QTransform pageToDisplay;
    std::optional<PDFDisplayList> content;
    std::optional<PDFDisplayList> annotations;
    /// How many times the annotations had changed when they were read.
    int version = 0;
    /// Why there is no content.
    bool isFileChanged = false;

    bool hasPictures() const { return content && content->hasPictures(); }
    /// About what it keeps in memory.
    std::size_t bytes() const
    {
        return (content ? content->bytes() : 0) + (annotations ? annotations->bytes() : 0);
    }
    bool showsAnnotations() const { return annotations && !annotations->isEmpty(); }
};

/// Reads a page; waits for the document.
PageContent readPage(PDFDocument& document, int index, const Cancellation& cancellation);

/// The same page with its annotations as they are now.
PageContent readAnnotations(PDFDocument& document, const PageContent& old, const Cancellation& cancellation);

} // namespace pdf
