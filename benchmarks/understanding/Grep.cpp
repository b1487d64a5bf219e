// SPDX-License-Identifier: AGPL-3.0-or-later
#include "Grep.h"

#include "Timing.h"

#include <QProcess>
#include <QProcessEnvironment>
#include <QTemporaryFile>

namespace quillo::benchmark {

std::optional<double> secondsOfGrep(const QString& pattern, bool caseInsensitive, const QString& file)
{
    // Into a file of its own: grep stops at the first match when it sees that nobody reads its output.
    QTemporaryFile output;
    if (!output.open())
        return std::nullopt;
    QProcess grep;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("C.UTF-8"));
    grep.setProcessEnvironment(environment);
    grep.setStandardOutputFile(output.fileName());
    QStringList arguments{QStringLiteral("-a"), QStringLiteral("-o"), QStringLiteral("-P")};
    if (caseInsensitive)
        arguments.append(QStringLiteral("-i"));
    arguments << QStringLiteral("-e") << pattern << file;
    const double seconds = secondsOf(1, [&] {
        grep.start(QStringLiteral("grep"), arguments);
        grep.waitForFinished(-1);
    });
    const bool searched = grep.exitStatus() == QProcess::NormalExit && grep.exitCode() <= 1;
    return searched && grep.error() == QProcess::UnknownError ? std::optional(seconds) : std::nullopt;
}

} // namespace quillo::benchmark
