// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "pdf/TextLines.h"

namespace pdf {

/// Takes columns of running text apart whose lines the content has row by row, each line of all columns
/// before the next, and puts one column after the other.
///
/// A gutter is a stretch that stays white over consecutive rows of the content, each below the one before. In
/// at least three of them text stands on both sides. That is as true of a table as of a newspaper, so what
/// the columns hold decides. Running text fills its lines with several words, and most of its lines begin in
/// the middle of a sentence: with a small letter. Cells are short, hold figures, or begin with a capital, and
/// a row of them stays one line: "Due date" and the date belong together.
void splitColumns(TextLines& text);

} // namespace pdf
