// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "pdf/ContentStream.h"

#include <mupdf/pdf.h>

#include <QSizeF>

#include <vector>

namespace pdf {

/// A field's background and border, as its widget asks for them (ISO 32000-1, 12.5.6.19). A plain value.
struct FieldFrame
{
    enum class Style { solid, dashed, beveled, inset, underlined };

    Style style = Style::solid;
    /// In points; nothing is drawn of a border without a colour.
    double width = 1.0;
    std::vector<double> dashes = {3.0};
    /// 0, 1, 3 or 4 components.
    std::vector<double> borderColour;
    std::vector<double> backgroundColour;
    /// Of the background alone; 1 hides what is behind it.
    double backgroundOpacity = 1.0;

    bool hasBorder() const { return !borderColour.empty() && width > 0.0; }
    /// How many times its width the border takes at an edge.
    int borderParts() const { return style == Style::beveled || style == Style::inset ? 2 : 1; }
};

/// May throw as MuPDF does.
void readFrame(fz_context* ctx, pdf_obj* widget, FieldFrame& frame);

/// Draws the frame of a field of this size; `cells` of more than 1 are parted by lines like the border. A
/// background that is not opaque is drawn in the graphics state /Background.
void drawFrame(ContentStream& content, const FieldFrame& frame, QSizeF size, int cells);

/// The same for a round button.
void drawRoundFrame(ContentStream& content, const FieldFrame& frame, QSizeF size);

} // namespace pdf
