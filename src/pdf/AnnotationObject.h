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
    /// Shows the annotation; the page's lower left corner is that of the bounds.
    DrawnPage picture;

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

/// Adds an object with nothing but its subtype to the page; a form field gets a name of its own and joins the
/// document's form. The caller drops the object.
pdf_obj* add(fz_context* ctx, pdf_document* document, pdf_obj* page, const Content& content);

void writeBounds(fz_context* ctx, pdf_obj* annotation, const QRectF& bounds);
void writeContents(fz_context* ctx, pdf_obj* annotation, const QByteArray& contents);

/// Writes all entries and replaces the appearance, deleting what the last one was made of.
void write(
    fz_context* ctx, pdf_document* document, pdf_obj* annotation, const Content& content,
    ObjectRange& appearance);

/// Where the picture is in the annotation.
extern const char* const picturePath;

/// Takes the annotation, its pop-up note and its form field out of the document. `appearance` is deleted too.
void remove(
    fz_context* ctx, pdf_document* document, pdf_obj* page, pdf_obj* annotation,
    const ObjectRange& appearance);

/// In page space, normalised.
QRectF bounds(fz_context* ctx, pdf_obj* annotation);

} // namespace pdf::annotations
