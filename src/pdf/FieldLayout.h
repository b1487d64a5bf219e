// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "pdf/FieldFont.h"
#include "pdf/PDFFormField.h"
#include "pdf/SystemText.h"

#include <QRectF>
#include <QSizeF>
#include <QStringList>

#include <vector>

namespace pdf {

/// What a field shows and where. Points; the origin is the lower left corner of the field as it is read, that
/// is before it is turned.
struct FieldLayout
{
    double fontSize = 0.0;
    std::vector<TextAt> lines;
    /// Behind the selected options of a list box.
    std::vector<QRectF> highlights;
    /// Nothing shows outside of it.
    QRectF clip;
};

/// The room that the border takes at each edge. `borderParts` is 2 for a border that looks raised or sunken.
double borderInset(const PDFFormField& field, int borderParts);

/// Lays out the value of a text field or a combo box.
FieldLayout layOutText(const PDFFormField& field, QSizeF size, double inset, const FieldFont& font);

/// Lays out the options of a list box from the one at the index `top` on.
FieldLayout
layOutOptions(const PDFFormField& field, QSizeF size, double inset, int top, const FieldFont& font);

/// The index from which on a list box of this size shows its options, so that something selected is in sight;
/// `top` where that is so anyway.
int topOption(const PDFFormField& field, QSizeF size, double inset, int top);

/// Breaks the text into lines no wider than the width, which is in parts of the font size: at line feeds,
/// else between words, else between characters.
QStringList wrapText(const QString& text, double width, const FieldFont& font);

} // namespace pdf
