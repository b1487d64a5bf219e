// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <string>

namespace quillo::benchmark {

/// As many pages of A4 as asked for, each a grey picture of 200 dots an inch as a scanner packs it (JPEG).
/// The same bytes every time with the same version of Qt.
std::string makeScans(int pageCount);

} // namespace quillo::benchmark
