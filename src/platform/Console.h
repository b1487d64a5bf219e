// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <QString>

namespace quillo {

/// Writes one line of diagnostics to standard output. Any thread.
void printLine(const QString& line);

} // namespace quillo
