// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <QString>

#include <optional>

namespace quillo::cli {

/// Asks for a file's password on the controlling terminal without showing what is typed. `isRepeated` says
/// first that the last one was wrong. Absent where nobody can be asked (neither standard input nor standard
/// error is a terminal, or the process runs in the background) and when the user ends the input.
///
/// The terminal is as it was before on return and whenever the process is interrupted, stopped or ended by a
/// signal meanwhile. The signal then takes its usual course.
std::optional<QString> askForPassword(const QString& fileName, bool isRepeated);

/// Shows again what is typed, for who ends the process from another thread while a question may be open. No
/// question can be asked afterwards.
void abandonQuestion();

} // namespace quillo::cli
