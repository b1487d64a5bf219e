// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <QString>

namespace quillo::benchmark {

/// Prints how many megabytes (of UTF-8) a second the extractor reads, each kind by itself and all together,
/// beside the plain loop over ICU and grep; then the classifier and the detector.
void measureThroughput(const QString& text);

} // namespace quillo::benchmark
