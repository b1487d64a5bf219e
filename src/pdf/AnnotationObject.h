// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "pdf/DrawnPage.h"

#include <QByteArray>
#include <QColor>
#include <QRectF>

#include <mupdf/pdf.h>

#include <optional>

// Annotations as their document has them (ISO 32000-1, 12.5). All functions run under the document's lock and
// may throw as MuPDF does.
namespace pdf::annotations {

/// The flag of a field whose value stays as it is.
constexpr int fieldIsReadOnly = 1;

/// What is written of an annotation that was made here. A plain value; texts are UTF-8.
struct Content
{
    QByteArray subtype;
    QRectF bounds;
    QByteArray contents;
    /// How others are to draw a text if they draw it anew.
    QByteArray defaultAppearance;
    /// 0 left, 1 centred, 2 right.
    int quadding = 0;

    // A text field.
    bool isField = false;
    /// Absent where the field is to keep the value that it has.
    std::optional<QByteArray> value;
    bool isReadOnly = false;
    std::optional<QColor> background;
    std::optional<int> borderWidth;
};

/// The numbers of the objects that were made for an appearance.
struct ObjectRange
{
    int first = 0;
    int end = 0;
};

/// Makes an object with nothing but its subtype and, for a form field, a name of its own. The caller drops
/// it.
pdf_obj* make(fz_context* ctx, pdf_document* document, pdf_obj* page, const Content& content);

/// Puts the object on the page, above all others, and a form field into the document's form; on failure it is
/// in neither.
void attach(
    fz_context* ctx, pdf_document* document, pdf_obj* page, pdf_obj* annotation, const Content& content);

void writeBounds(fz_context* ctx, pdf_obj* annotation, const QRectF& bounds);
void writeContents(fz_context* ctx, pdf_obj* annotation, const QByteArray& contents);

/// Writes all entries but the appearance.
void write(fz_context* ctx, pdf_obj* annotation, const Content& content);

/// Has the annotation show the picture, whose page has its lower left corner where the bounds have theirs.
void writePicture(
    fz_context* ctx, pdf_document* document, pdf_obj* annotation, const DrawnPage& picture,
    const QSizeF& size);

/// Where the picture is in the annotation.
extern const char* const picturePath;

/// Deletes the objects and empties the range.
void deleteObjects(fz_context* ctx, pdf_document* document, ObjectRange& range);

/// Takes the annotation, its pop-up note and its form field out of the document. `appearance` is deleted too.
void remove(
    fz_context* ctx, pdf_document* document, pdf_obj* page, pdf_obj* annotation,
    const ObjectRange& appearance);

/// In page space, normalised.
QRectF bounds(fz_context* ctx, pdf_obj* annotation);

} // namespace pdf::annotations
