// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <QString>

#include <optional>

namespace quillo::benchmark {

/// Seconds that `grep -oP` takes to print all matches of a pattern in a UTF-8 file, or nothing where it gives
/// up or is not there. It searches line by line and finds no match that spans two lines.
std::optional<double> secondsOfGrep(const QString& pattern, bool caseInsensitive, const QString& file);

} // namespace quillo::benchmark
