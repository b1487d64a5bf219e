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

/// A run on a terminal of its own.
class TerminalRun
{
public:
    TerminalRun(const QStringList& arguments, unsigned short columns, const QStringList& environment = {});
    /// Kills the program where it still runs.
    ~TerminalRun();
    TerminalRun(const TerminalRun&) = delete;
    TerminalRun& operator=(const TerminalRun&) = delete;

    /// Waits until the program has written the text; false when it ends before.
    bool receives(const QByteArray& text);
    void sendSignal(int signal) const;
    /// How the program has ended, as waitpid() tells it.
    int waitForEnd();

    /// What the terminal was sent so far.
    const QByteArray& bytes() const { return m_bytes; }
    /// What is to be seen of it: a line that is begun anew hides what it was before.
    QByteArray shown() const;

private:
    bool readMore();

    int m_terminal = -1;
    pid_t m_process = 0;
    QByteArray m_bytes;
    std::optional<int> m_status;
};

/// Runs it on a terminal of this many columns and gives what is to be seen there in the end.
QByteArray
runCliOnTerminal(const QStringList& arguments, unsigned short columns, const QStringList& environment = {});

/// A file of the samples folder.
QString sample(const char* name);

/// A list of words as arguments.
QStringList words(const char* line);
