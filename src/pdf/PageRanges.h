// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <QStringView>

#include <optional>
#include <vector>

namespace pdf {

/// The zero-based pages that a text such as "1-3, 5, 8-" names, in its order: "5, 1-2" is 5, 1, 2 and "3-1"
/// is 3, 2, 1. A range without a beginning starts at the first page, one without an end goes to the last;
/// what lies behind the last page is left out. Absent where the text is none of this, names the page 0 or
/// names no page that there is.
std::optional<std::vector<int>> parsePageRanges(QStringView text, int pageCount);

} // namespace pdf
