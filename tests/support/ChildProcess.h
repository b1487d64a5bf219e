// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <chrono>
#include <map>
#include <optional>
#include <sys/types.h>
#include <utility>

namespace quillo {

/// A program that a test runs beside itself; its standard output is the test's to read. QProcess would do,
/// but for the thread sanitizer: until the program has started, Qt's child shares the memory of its parent,
/// and what the sanitizer notes in it there spoils its view of the parent's main thread.
class ChildProcess
{
public:
    /// By name; these variables are added to those of this process.
    using Environment = std::map<QString, QString>;

    /// Whose to read the program's standard error is.
    enum class Errors { terminal, output };

    ChildProcess(
        const QString& program, const QStringList& arguments, const Environment& environment = {},
        Errors errors = Errors::terminal);
    /// Kills the program where it still runs.
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    /// The next line of output without its line feed; none when the output has ended or none comes in time.
    std::optional<QByteArray> readLine(std::chrono::milliseconds patience = std::chrono::minutes(1));

    /// All output that was not read yet, once the program has ended.
    QByteArray takeOutput() { return std::exchange(m_unread, {}); }

    void sendSignal(int signal) const;

    /// How the program has ended, as waitpid() tells it; none when it runs on.
    std::optional<int> waitForEnd(std::chrono::milliseconds patience = std::chrono::minutes(1));

private:
    /// Reads what there is; false when nothing came in time.
    bool readMore(std::chrono::milliseconds patience);

    pid_t m_process = 0;
    int m_output = -1;
    QByteArray m_unread;
    bool m_outputEnded = false;
    std::optional<int> m_status;
};

} // namespace quillo
