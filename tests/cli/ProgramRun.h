// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <chrono>
#include <optional>

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
