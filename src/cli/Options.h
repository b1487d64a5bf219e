// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

#include <optional>
#include <variant>
#include <vector>

namespace quillo::cli {

enum class Command { text, classify, extract, actions, explain, analyze };

/// Something to read.
struct Input
{
    /// As it was given, with its bytes as pdf/FileName.h keeps them; "-" is standard input.
    QString path;
    /// Text whose pages are separated by form feeds, instead of a PDF.
    bool isPlain = false;

    bool isStandardInput() const { return path == QLatin1String("-"); }
};

/// What the user wants done.
struct Options
{
    Command command = Command::text;
    /// At least one, but for a passage to explain.
    std::vector<Input> inputs;
    /// The passage to explain, given on the command line.
    std::optional<QString> passage;
    bool json = false;
    /// Tried on every encrypted file.
    std::optional<QString> password;
    /// The file that holds the password, instead; "-" is standard input.
    std::optional<QString> passwordFile;
};

/// What the program tells of itself.
enum class Notice { help, version };

/// Why the arguments make no sense: one sentence without a full stop.
struct UsageError
{
    QString message;
};

/// Reads the arguments, without the program's name. Options may stand before, between and after the files;
/// "--" ends them. Asking for help or the version wins over whatever else is there.
std::variant<Options, Notice, UsageError> parseArguments(const QStringList& arguments);

/// What `--help` prints.
QString helpText();

} // namespace quillo::cli
