// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "pdf/TextLines.h"

#include <cstddef>
#include <vector>

namespace pdf {

/// The order in which to read the lines of a page, as indices.
///
/// The order of the content is kept but for one rule: a line is read before every line that it lies entirely
/// above in the same column. A line that comes too early in the content draws those above it to itself. Two
/// lines of the same direction of writing share a column when they overlap by at least half the shorter one's
/// length. Lines next to each other have no order of their own, so columns and table cells stay as the
/// content has them, and a heading above two columns comes before both. A page with thousands of lines keeps
/// the order of its content altogether.
std::vector<std::size_t> readingOrder(const std::vector<TextLine>& lines);

} // namespace pdf
