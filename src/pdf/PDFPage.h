// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "pdf/Cancellation.h"
#include "pdf/PDFDisplayList.h"
#include "pdf/PDFError.h"
#include "pdf/PDFFormField.h"
#include "pdf/PDFLink.h"
#include "pdf/PDFSelection.h"
#include "pdf/TextRange.h"

#include <QPointF>
#include <QRectF>
#include <QSizeF>
#include <QString>
#include <QTransform>

#include <memory>
#include <optional>
#include <variant>
#include <vector>

namespace pdf {

class PDFAnnotation;
class PDFDocument;
class PageHandle;
class TextLayer;

enum class DisplayBox { mediaBox, cropBox };

/// One page of a document. Safe from any thread, under the document's lock.
///
/// Two coordinate spaces meet here. Page space is the page's default user space in PDF points: y grows
/// upwards and the origin is where the page's boxes put it, which on nearly every page is the lower left
/// corner. Display space is the page as it is shown: the visible part of the page (its crop box within its
/// media box), turned by its rotation, in points, origin at the upper left, y growing downwards.
class PDFPage : public std::enable_shared_from_this<PDFPage>
{
public:
    ~PDFPage();
    PDFPage(const PDFPage&) = delete;
    PDFPage& operator=(const PDFPage&) = delete;

    std::shared_ptr<PDFDocument> document() const;
    /// Zero-based.
    int index() const;

    /// The box in page space, normalised; the crop box of a page without one is its media box.
    QRectF bounds(DisplayBox box) const;
    /// Clockwise, one of 0, 90, 180, 270.
    int rotation() const;
    /// Turns the page to a multiple of 90 degrees, -90 being 270. Size, transform and lists asked for from
    /// now on follow it; lists recorded before stay valid and show the page as it was. Saved with the
    /// document.
    Result<std::monostate> setRotation(int degrees);

    /// Size of the page in display space.
    QSizeF displaySize() const;
    /// From page space to display space; always invertible.
    QTransform pageToDisplay() const;

    /// The page's text in reading order with a line feed after each line, ligatures as letters; absent when
    /// the page has no text layer or cannot be interpreted. Text of annotations and form fields that are
    /// shown on the screen is part of it, as they are now. Kept while the page lives, until one of those
    /// changes.
    std::optional<QString> string(const Cancellation& cancellation = {});

    /// The page's text with the place of every character; without characters when the page has no text layer,
    /// null when it cannot be interpreted. Kept like string().
    std::shared_ptr<const TextLayer> text(const Cancellation& cancellation = {});

    /// The index in string() of the character at a point of page space, or -1.
    qsizetype characterIndex(QPointF point);

    /// The characters of string() in the range, cut to the text; absent when that selects nothing.
    std::optional<PDFSelection> selection(TextRange range);
    /// What lies in reading order between the places nearest to two points of page space.
    std::optional<PDFSelection> selection(QPointF from, QPointF to);
    /// The word or the line at a point of page space; absent where there is no text.
    std::optional<PDFSelection> selectionForWord(QPointF point);
    std::optional<PDFSelection> selectionForLine(QPointF point);

    /// The page's links, the one that lies on top last; none where they cannot be read.
    std::vector<PDFLink> links(const Cancellation& cancellation = {});

    /// The page's content without its annotations and form fields, ready to be rasterised by any thread.
    Result<PDFDisplayList> contentDisplayList(const Cancellation& cancellation = {});
    /// The annotations and form fields alone.
    Result<PDFDisplayList> annotationDisplayList(const Cancellation& cancellation = {});

    /// All annotations on the page, form fields and links among them, in the order in which they are drawn.
    std::vector<std::shared_ptr<PDFAnnotation>> annotations();
    /// Puts the annotation on the page, above all others. It must have been made here, and be on no page.
    void addAnnotation(const std::shared_ptr<PDFAnnotation>& annotation);
    /// Takes the annotation from the page; nothing happens when it is not on it. One that was made here can
    /// be added again.
    void removeAnnotation(const std::shared_ptr<PDFAnnotation>& annotation);

    /// The form fields on the page as they are now, in the order in which the Tab key walks them: in rows or
    /// columns where the page says so, else as it lists them. Read anew at every call.
    Result<std::vector<PDFFormField>> formFields(const Cancellation& cancellation = {}) const;

private:
    friend class PDFDocument;
    friend class PrintComposer;
    PDFPage(std::shared_ptr<PDFDocument> document, std::unique_ptr<PageHandle> handle);

    std::shared_ptr<PDFDocument> m_document;
    std::unique_ptr<PageHandle> m_handle;
};

} // namespace pdf
