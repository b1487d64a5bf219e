// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <string_view>

namespace quillo {

/// Lower case, in the order of the year.
inline constexpr std::string_view monthNames[] = {
    "january", "february", "march",     "april",   "may",      "june",
    "july",    "august",   "september", "october", "november", "december",
};

} // namespace quillo
