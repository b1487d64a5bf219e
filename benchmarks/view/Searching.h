// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "view/Subject.h"

namespace quillo::benchmark {

/// Times a search through the whole document once its text is indexed, and what MuPDF's own tool takes to
/// bring the text to light in which one could search. False when something fails.
bool measureSearching(const Subject& subject, int rounds);

} // namespace quillo::benchmark
