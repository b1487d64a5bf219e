// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "view/Subject.h"

namespace quillo::benchmark {

/// Scrolls from the first page to the last, some ten pages a second, and prints how long the main thread was
/// busy with a frame and with anything else, how much of the way was sharp at once, and what memory it took.
/// False when the document is not shown.
bool measureScrolling(const Subject& subject);

} // namespace quillo::benchmark
