// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <QString>

namespace quillo::benchmark {

/// Prints the extractor's time per UTF-16 unit on 1, 2, 4 and 8 million units of every hostile shape and of
/// ordinary text, which must hold as many, and how the plain loop over ICU fares on small slices of the same.
void measureGrowth(const QString& ordinaryText);

} // namespace quillo::benchmark
