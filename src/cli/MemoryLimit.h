// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <QString>

namespace quillo::cli {

/// Lets the process have so much memory and no more, so that a hostile file ends in std::bad_alloc instead of
/// taking the machine along. Where memory runs out on a thread that cannot hand the exception on, the process
/// ends with one line on standard error and the status of an input that cannot be read.
void limitMemory();

/// The input that such a line names from now on.
void nameInputForMemoryLimit(const QString& name);

} // namespace quillo::cli
