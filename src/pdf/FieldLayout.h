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

// The colour behind the selected options of a list box.
constexpr double selectedOptionRed = 0.6;
constexpr double selectedOptionGreen = 0.757;
constexpr double selectedOptionBlue = 0.855;

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

/// The room that the border takes at each edge.
double borderInset(const PDFFormField& field);

/// Lays out the value of a text field or a combo box.
FieldLayout layOutText(const PDFFormField& field, QSizeF size, double inset, const FieldFont& font);

/// Lays out the options of a list box from the one at the index `top` on.
FieldLayout
layOutOptions(const PDFFormField& field, QSizeF size, double inset, int top, const FieldFont& font);

/// The index from which on a list box of this size shows its options: the document's own, unless nothing
/// selected is in sight then.
int topOption(const PDFFormField& field, QSizeF size, double inset);

/// Where the rows of a list box are: where its appearance has them, else below one another without gaps.
FormFieldRows optionRows(const PDFFormField& field, double inset);

/// Breaks the text into lines no wider than the width, which is in parts of the font size: at line feeds,
/// else between words, else between characters.
QStringList wrapText(const QString& text, double width, const FieldFont& font);

} // namespace pdf
