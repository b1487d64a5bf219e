// SPDX-License-Identifier: AGPL-3.0-or-later
#include "cli/PasswordFile.h"

#include "cli/InputFile.h"

#include <QCoreApplication>

#include <unistd.h>

#include <array>

namespace quillo::cli {
namespace {

// No encryption looks at more than 127 bytes of a password.
constexpr qsizetype longestLine = 4096;

pdf::PDFError noPassword(const char* reason)
{
    return {pdf::PDFError::Code::unreadable, QCoreApplication::translate("quillo::cli", reason)};
}

} // namespace

pdf::Result<std::optional<QString>> readPasswordFile(const QString& path)
{
    if (path == QLatin1String("-") && isatty(STDIN_FILENO) == 1)
        return std::optional<QString>();
    auto file = InputFile::open(path);
    if (!file)
        return file.error();

    QByteArray line;
    std::array<char, 512> buffer = {};
    while (!line.contains('\n') && line.size() <= longestLine) {
        const auto count = file->read(buffer);
        if (!count)
            return count.error();
        if (*count == 0)
            break;
        line.append(buffer.data(), *count);
    }
    line.truncate(line.contains('\n') ? line.indexOf('\n') : line.size());
    if (line.endsWith('\r'))
        line.chop(1);
    if (line.size() > longestLine)
        return noPassword(QT_TRANSLATE_NOOP("quillo::cli", "the first line is too long for a password"));
    if (!line.isValidUtf8())
        return noPassword(QT_TRANSLATE_NOOP("quillo::cli", "the password is not UTF-8"));
    return std::optional(QString::fromUtf8(line));
}

} // namespace quillo::cli
