// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

struct hb_font_t;

namespace samples {

using HarfBuzzFont = std::unique_ptr<hb_font_t, void (*)(hb_font_t*)>;

/// The bytes of one of the committed fonts, by the name of its file without the extension. Throws
/// std::runtime_error when there is none.
std::string fontData(std::string_view name);

/// A font in its own units. The data must outlive it.
HarfBuzzFont openFont(std::string_view data);

int unitsPerEm(hb_font_t* font);

struct Glyph
{
    std::uint32_t index = 0;
    /// Font units.
    int advance = 0;
    /// The letters for which it stands; empty for the second glyph of the same letters.
    std::u32string letters;
};

/// The text's glyphs from left to right, joined where the script joins. Throws std::invalid_argument for a
/// character that the font lacks.
std::vector<Glyph> shaped(hb_font_t* font, std::string_view utf8);

} // namespace samples
