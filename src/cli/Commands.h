// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "cli/Options.h"
#include "cli/Output.h"

namespace quillo::cli {

enum class ExitStatus { success = 0, unreadableInput = 1, wrongUsage = 2 };

/// Carries out what the options say. An input that cannot be read gets one line on `errors`, with its name
/// and the reason, and the others are read all the same. Throws OutputError.
ExitStatus runCommand(const Options& options, Output& output, Output& errors);

} // namespace quillo::cli
