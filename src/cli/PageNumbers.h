// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <QString>

#include <cstdint>
#include <vector>

namespace quillo::cli {

/// Pages for people: "1-3, 5" for the zero-based, ascending numbers 0, 1, 2 and 4. A list that would be
/// longer than a person reads ends with the number of pages that are left out.
QString pageNumbers(const std::vector<std::int64_t>& pages);

} // namespace quillo::cli
