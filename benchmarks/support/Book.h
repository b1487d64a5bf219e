// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <string>

namespace quillo::benchmark {

/// A novel's worth of pages in a serif font of 11 points: chapters, justified paragraphs, running heads and
/// page numbers. The same bytes every time; no font is embedded.
std::string makeBook(int pageCount);

} // namespace quillo::benchmark
