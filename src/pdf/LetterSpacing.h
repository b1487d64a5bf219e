// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "pdf/TextLines.h"

#include <cstddef>
#include <vector>

namespace pdf {

/// A space in a line that stands for a gap between glyphs.
struct LetterGap
{
    /// The space's place, counted from the start of the line.
    std::size_t position;
    /// How wide the gap is, and the font size there.
    float width;
    float size;
};

/// Takes the spaces away that are no wider than the gaps between the letters around them: letters may be
/// spaced as wide as words are elsewhere. What is usual in a stretch of the line is the gap that a quarter of
/// the gaps between its letters stay below: in text that is not spaced about nothing, even where the words
/// are short. A space has to exceed it clearly. A stretch ends where the gap is wider than any spacing of
/// letters. Letters that all stand alone, as the words "a b c" would, are one word only if there are many and
/// none of them is a figure, or if the content itself has spaces among them. The characters from `first` on
/// are those of the line.
void joinSpacedLetters(
    std::vector<TextCharacter>& characters, std::size_t first, const std::vector<LetterGap>& gaps);

} // namespace pdf
