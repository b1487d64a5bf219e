// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "view/Subject.h"

namespace quillo::benchmark {

/// Times going to a page far away until it is sharp on the screen, beside MuPDF's own tool drawing the same
/// pages at the same size, one after the other, and prints the medians. False when something fails.
bool measureJumping(const Subject& subject, int rounds);

} // namespace quillo::benchmark
