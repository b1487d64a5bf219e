// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "pdf/TextLines.h"

#include <vector>

namespace pdf {

/// Whether the character belongs to a script that is written from right to left.
bool isRightToLeft(char32_t code);

/// Sorts the characters of a line by where they stand, marks with the letters before them, and bridges gaps
/// that are wider than `spaceGap` with spaces.
void sortByPlace(std::vector<TextCharacter>& characters, float spaceGap);

/// Takes the characters of a line from left to right as they stand and puts them in the order in which they
/// are read, by undoing the reordering of the Unicode Bidirectional Algorithm (UAX #9). What a page shows
/// does not determine that order entirely: the line's own direction is taken to be that of most of its
/// letters. Brackets in right-to-left text are mirrored where they would close before they open.
void putInReadingOrder(std::vector<TextCharacter>& characters);

} // namespace pdf
