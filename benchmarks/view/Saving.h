// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "view/Subject.h"

namespace quillo::benchmark {

/// Opens a document, turns its first page and saves it under another name.
bool saveTurned(const QString& source, const QString& target);

/// Times that beside other programs that read and write the file, each as a program of its own, and saving
/// alone within a program. False when something fails.
bool measureSaving(const Subject& subject, int rounds);

} // namespace quillo::benchmark
