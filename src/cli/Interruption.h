// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <QString>

#include <array>
#include <chrono>
#include <mutex>
#include <optional>
#include <thread>

namespace quillo::cli {

class Progress;

/// Ends the program before it is done, from construction to destruction, whatever it is doing: when it is
/// interrupted (Control-C, SIGTERM), by that signal, and when its time limit is over, with one line on
/// standard error and the status of an input that cannot be read. What was not yet handed to the system is
/// not written then, so output that breaks off goes with a status that says so. The terminal's line is left
/// clean. A signal that was ignored when the program started stays ignored.
///
/// Its thread draws the progress, too, so that nothing is drawn once the program ends. There is one at a
/// time.
class Interruption
{
public:
    Interruption(Progress& progress, std::optional<std::chrono::duration<double>> timeLimit);
    ~Interruption();
    Interruption(const Interruption&) = delete;
    Interruption& operator=(const Interruption&) = delete;

    /// The input that a message about the time limit names from now on.
    void nameInput(const QString& name);

private:
    using Clock = std::chrono::steady_clock;

    void watch();
    /// How long to wait for a signal, in milliseconds; -1 for ever.
    int patience() const;
    [[noreturn]] void endByTimeLimit();
    [[noreturn]] void endBySignal(int signal);

    Progress& m_progress;
    const std::optional<std::chrono::duration<double>> m_timeLimit;
    const Clock::time_point m_start;
    std::mutex m_mutex;
    QString m_inputName;
    /// The ends of a pipe through which signals reach the thread.
    std::array<int, 2> m_pipe = {-1, -1};
    std::thread m_thread;
};

} // namespace quillo::cli
