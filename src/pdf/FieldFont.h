// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <QStringView>

namespace pdf {

/// What the layout of a field has to know of a font. Lengths are in parts of the font size.
class FieldFont
{
public:
    // Of the common text fonts, taken alike for all, so that a field does not jump when its text needs
    // another font.
    static constexpr double ascent = 0.931;
    static constexpr double descent = -0.225;
    static constexpr double capitalHeight = 0.718;
    static constexpr double lineHeight = ascent - descent;

    virtual ~FieldFont() = default;

    /// The advance of the text in one line.
    virtual double width(QStringView text) const = 0;
};

} // namespace pdf
