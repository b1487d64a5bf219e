// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <QString>

namespace quillo::benchmark {

/// Measures what it takes to list the annotations of a page with so many of them, and to show one that is
/// moved: the topmost, which was placed here, and one in the middle of the order. The document is written to
/// the folder.
bool measureMoving(const QString& folder, int annotationCount);

} // namespace quillo::benchmark
