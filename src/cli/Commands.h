// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "cli/Options.h"
#include "cli/Output.h"

namespace quillo::cli {

enum class ExitStatus {
    success = 0,
    unreadableInput = 1,
    wrongUsage = 2,
    /// Everything was read but some pages, which ask for too much time or memory.
    incompleteInput = 3,
};

/// Carries out what the options say. An input that cannot be read gets one line on `errors`, with its name
/// and the reason, and the others are read all the same; so does one of which pages were given up on, besides
/// its result. Throws OutputError.
ExitStatus runCommand(const Options& options, Output& output, Output& errors);

} // namespace quillo::cli
