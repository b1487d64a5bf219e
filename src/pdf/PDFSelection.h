// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "pdf/TextRange.h"

#include <QRectF>
#include <QString>

#include <memory>
#include <vector>

namespace pdf {

class PDFDocument;
class PDFPage;
class TextLayer;

/// Text of a document: a range of one page's text, or of several. A plain value.
class PDFSelection
{
public:
    /// The selected text of one page.
    struct Part
    {
        /// Zero-based.
        int page = 0;
        TextRange range;
        /// The page's text; null where it was not at hand, and then asked of the page when it is needed.
        std::shared_ptr<const TextLayer> text;
    };

    /// `parts` are in the order of their pages, at most one for each; `string` is their text.
    PDFSelection(std::shared_ptr<PDFDocument> document, std::vector<Part> parts, QString string);

    /// The selected text, pages joined with line feeds.
    const QString& string() const { return m_string; }

    const std::shared_ptr<PDFDocument>& document() const { return m_document; }
    const std::vector<Part>& parts() const { return m_parts; }

    /// The pages that the selection touches, in their order; those that cannot be read are left out. Asks the
    /// document for them.
    std::vector<std::shared_ptr<PDFPage>> pages() const;

    /// The smallest rectangle around the selected characters of the page in page space; empty for a page that
    /// the selection does not touch.
    QRectF bounds(PDFPage& page) const;

    /// One rectangle in page space for each line of the page's text that the selection touches, in text
    /// order.
    std::vector<QRectF> lineBounds(PDFPage& page) const;

    /// Whether both select the same characters of the same document.
    friend bool operator==(const PDFSelection& a, const PDFSelection& b);

private:
    std::shared_ptr<PDFDocument> m_document;
    std::vector<Part> m_parts;
    QString m_string;
};

} // namespace pdf
