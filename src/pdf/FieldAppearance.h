// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "pdf/DrawnPage.h"
#include "pdf/EncodedFont.h"
#include "pdf/FormReader.h"

#include <mupdf/pdf.h>

#include <QByteArray>
#include <QSizeF>

namespace pdf {

/// What is to be drawn in the place of a widget: a content stream with what it needs.
struct FieldAppearance
{
    QByteArray content;
    /// Of the field as it is read, before it is turned.
    QSizeF size;
    /// Anticlockwise, one of 0, 90, 180, 270.
    int rotation = 0;
    /// The name of the form's font that the content uses; empty for none.
    QByteArray font;
    /// A page that the content shows as the object /Text; without a file for none.
    DrawnPage textPage;

    /// Of the graphics state /Background.
    double backgroundOpacity = 1.0;

    bool showsPage() const { return !textPage.file.isEmpty(); }
};

/// What a text field, a combo box or a list box shows as its value. The form's own font is taken where it has
/// all the characters, else the system's.
FieldAppearance composeValue(const fields::FieldRecord& record, const EncodedFont& font);

/// What a check box or a radio button shows in one of its two states; needs the form's symbol font.
FieldAppearance composeButton(const fields::FieldRecord& record, bool isOn);

/// The names of the forms' symbol font and of the font of fields that name none.
extern const char* const symbolFontName;
extern const char* const defaultFontName;

/// Where the object /Text is in a widget that has the appearance.
extern const char* const textPagePath;

/// Makes the form XObject of the appearance; the caller drops it. May throw as MuPDF does.
pdf_obj*
makeAppearance(fz_context* ctx, pdf_document* document, pdf_obj* widget, const FieldAppearance& appearance);

} // namespace pdf
