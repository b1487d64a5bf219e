// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <chrono>
#include <optional>

#include <sys/types.h>

/// What became of a run of quillo-cli in a process of its own.
struct ProgramRun
{
    /// The exit status; -1 when it was killed by a signal or did not end in time.
    int status = -1;
    QByteArray output;
    QByteArray errors;
    std::chrono::milliseconds cpuTime{};
    /// Peak resident memory.
    qint64 peakBytes = 0;

    QString errorText() const { return QString::fromUtf8(errors); }
};

struct ProgramSetting
{
    QByteArray input = {};
    /// "NAME=value" entries, besides those of this process.
    QStringList environment = {};
    std::chrono::seconds patience{60};
    /// A path to write to instead of collecting the output.
    std::optional<QString> outputPath = {};
};

ProgramRun runCli(const QStringList& arguments, const ProgramSetting& setting = {});

/// Runs it on a terminal of this many columns and gives what appears there.
QByteArray
runCliOnTerminal(const QStringList& arguments, unsigned short columns, const QStringList& environment = {});

/// A file of the samples folder.
QString sample(const char* name);

/// A list of words as arguments.
QStringList words(const char* line);

/// Runs a shell script in which "$0" is the program; the arguments are "$1" and so on.
ProgramRun runShell(const char* script, const QStringList& arguments = {});

/// The program on a terminal of its own, at which somebody types.
class TerminalSession
{
public:
    explicit TerminalSession(const QStringList& arguments);
    /// Kills the program where it still runs.
    ~TerminalSession();
    TerminalSession(const TerminalSession&) = delete;
    TerminalSession& operator=(const TerminalSession&) = delete;

    /// Waits until the text has appeared so many times; false when it does not.
    bool shows(const QByteArray& text, int times = 1);
    void type(const QByteArray& keys) const;
    /// True where the terminal shows what is typed.
    bool echoes() const;
    /// How the program ends, as waitpid() tells it; none when it does not.
    std::optional<int> waitForEnd();
    /// All that has appeared, with line feeds at the line ends.
    QByteArray shown() const;

private:
    bool readMore();

    pid_t m_process = -1;
    int m_terminal = -1;
    /// Kept open, so that the terminal outlives the program.
    int m_programsSide = -1;
    QByteArray m_shown;
};
