// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <cstdint>
#include <vector>

struct hb_font_t;

namespace samples {

/// A point in font units, y growing upwards.
struct OutlinePoint
{
    double x = 0;
    double y = 0;
};

using Contour = std::vector<OutlinePoint>;

/// The glyph's outline with its curves broken into short straight lines.
std::vector<Contour> glyphOutline(hb_font_t* font, std::uint32_t glyph);

} // namespace samples
