// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "pdf/TextLines.h"

namespace pdf {

/// Makes one line of lines that the content has one after another from right to left at the same height, as
/// some writers do with the cells of a table, and with a value and the label before it. Lines with
/// right-to-left letters stay as they are.
void joinRows(TextLines& text);

} // namespace pdf
