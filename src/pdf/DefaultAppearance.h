// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QColor>

#include <optional>
#include <span>

namespace pdf {

/// How the text of a form field is to look: what its default appearance string says, which is a piece of a
/// content stream (ISO 32000-1, 12.7.3.3). A plain value.
struct DefaultAppearance
{
    /// The font's name among the form's resources; may be empty.
    QByteArray font;
    /// In points; 0 fits the text to the field.
    double size = 0.0;
    QColor colour = Qt::black;
    /// The operator that sets the colour, with its operands, as the string has it.
    QByteArray colourOperator = "0 g";
};

/// Never fails: what the string does not say stays as it is by default.
DefaultAppearance parseDefaultAppearance(QByteArrayView string);

/// The colour of 1 (gray), 3 (RGB) or 4 (CMYK) components from 0 to 1; absent for any other number of them.
std::optional<QColor> colourOf(std::span<const double> components);

} // namespace pdf
