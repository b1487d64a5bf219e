// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "pdf/GlyphCollector.h"

#include <cstddef>
#include <vector>

namespace pdf {

/// A character of the page's text with its place in display space.
struct TextCharacter
{
    char32_t code = 0;
    fz_rect box = {};
    /// From where to where along the line's direction of writing; never backwards.
    float from = 0;
    float to = 0;
    /// The next character stands to the left, if the line's direction of writing is to the right.
    bool isRightToLeft = false;
};

/// A run of characters on one line of writing, in reading order.
struct TextLine
{
    /// The line's characters, in the list of all.
    std::size_t first = 0;
    std::size_t count = 0;

    /// The direction of writing, of length 1, in display space.
    fz_point direction = {1, 0};
    /// Where the line lies: from and to along the direction of writing, and from top to foot across it,
    /// measured along `direction` and along `direction` turned a quarter clockwise. The letters' cores count,
    /// from half the font size above the line of writing to the line itself, so that lines set tightly do not
    /// overlap.
    fz_rect extent = {};
    /// From the top of the highest letter to the foot of the lowest, across the direction of writing.
    float top = 0;
    float foot = 0;
    /// The largest font size.
    float size = 0;
};

struct TextLines
{
    std::vector<TextCharacter> characters;
    /// In the order of the content.
    std::vector<TextLine> lines;
};

/// Puts glyphs together to lines. A line goes on as long as the next glyph stands on the same line of writing
/// and not before the last one (right-to-left letters may also follow to the left of the line); a gap becomes
/// a space, unless the letters are spaced as wide as that. Ligatures and presentation forms become letters
/// that share the glyph's width, all white space becomes plain spaces, and control characters go. Text that
/// is printed twice to look bold, be it by letters, words or lines, is taken once. The characters of a line
/// come in the order in which they are read, right-to-left text included.
TextLines textLines(const GlyphCollector& text);

} // namespace pdf
