// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "pdf/TextLines.h"

namespace pdf {

/// Makes one line of what a page shows as one line. That are lines that the content has one after another
/// from right to left at the same height, as some writers do with the cells of a table, and with a value and
/// the label before it; and lines anywhere in the content of which one begins where the other ends, as
/// writers leave them that change the font only once for all words that need it. Lines with right-to-left
/// letters stay as they are.
void joinRows(TextLines& text);

} // namespace pdf
