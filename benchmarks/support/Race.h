// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

#include <functional>
#include <string>
#include <vector>

namespace quillo::benchmark {

/// The value in the middle; there must be one.
double median(std::vector<double> values);

/// Writes a file; false when that fails.
bool writeFile(const QString& path, const std::string& bytes);

/// Runs a program to its end, its output dropped; false when it fails.
bool runProgram(const QString& program, const QStringList& arguments);

/// Somebody whose job is timed.
struct Contestant
{
    QString name;
    /// False when it failed.
    std::function<bool()> run;
    std::vector<double> milliseconds = {};
};

/// Lets all take part in each round, so that a change in the machine's load meets all of them; the first
/// round fills the caches and does not count. False, after a line on standard error, when one fails.
bool race(std::vector<Contestant>& contestants, int rounds);

/// Prints a line for each with its median, and how much faster than the first it is.
void printRace(const std::vector<Contestant>& contestants);

} // namespace quillo::benchmark
