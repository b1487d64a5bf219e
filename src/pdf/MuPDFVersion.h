// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <mupdf/fitz.h>

#include <string_view>

// To be included where members are touched that MuPDF's headers show but its documentation does not promise:
// the jump stack, the cross-reference table, the page map, devices and processors. Another version may have
// laid them out anew or given them another meaning, which no compiler would notice.
static_assert(
    std::string_view(FZ_VERSION).starts_with("1.21."),
    "look at each place that includes this header before another version of MuPDF is used");
