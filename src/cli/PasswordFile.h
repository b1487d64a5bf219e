// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "pdf/PDFError.h"

#include <QString>

#include <optional>

namespace quillo::cli {

/// The password that a file holds: its first line (UTF-8), without the line end. "-" is standard input, of
/// which no more is waited for than that line; where that is a terminal there is none, so that the question
/// is asked that does not show the answer. The error's message fits behind the file's name.
pdf::Result<std::optional<QString>> readPasswordFile(const QString& path);

} // namespace quillo::cli
