// SPDX-License-Identifier: AGPL-3.0-or-later
#include "cli/Commands.h"
#include "cli/MemoryLimit.h"
#include "cli/Options.h"
#include "cli/Output.h"
#include "cli/SafeText.h"
#include "pdf/FileName.h"
#include "platform/BundleInfo.h"

#include <QCoreApplication>

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>

namespace {

using namespace quillo;
using namespace quillo::cli;

ExitStatus runArguments(const QStringList& arguments, Output& output, Output& errors)
{
    const auto parsed = parseArguments(arguments);
    if (const auto* const wrong = std::get_if<UsageError>(&parsed)) {
        errors.write(QCoreApplication::translate("quillo::cli", "quillo-cli: %1 (see quillo-cli --help)\n")
                         .arg(safeLine(pdf::printableFileName(wrong->message))));
        return ExitStatus::wrongUsage;
    }
    if (const auto* const notice = std::get_if<Notice>(&parsed)) {
        const QString version =
            BundleInfo::informationValue(u"CFBundleShortVersionString").value_or(QString());
        output.write(*notice == Notice::help ? helpText() : QStringLiteral("quillo-cli %1\n").arg(version));
        output.flush();
        return ExitStatus::success;
    }
    return runCommand(std::get<Options>(parsed), output, errors);
}

/// Puts something that can neither be read nor written in the place of every standard stream that is closed,
/// so that no file, pipe or copy of ours is ever taken for one.
void occupyStandardStreams()
{
    int descriptor = -1;
    do {
        descriptor = ::open("/", O_PATH);
    } while (descriptor >= 0 && descriptor <= STDERR_FILENO);
    if (descriptor >= 0)
        ::close(descriptor);
}

} // namespace

// There is no application object: nothing here needs an event loop, and its start would cost more than the
// rest.
int main(int argc, char** argv)
{
    occupyStandardStreams();
    // Whoever reads our output may stop when it has enough; the next write then fails instead of killing us.
    std::signal(SIGPIPE, SIG_IGN);
    // A file that grows beyond what this process may write is reported like a full disk.
    std::signal(SIGXFSZ, SIG_IGN);
    limitMemory();

    QStringList arguments;
    for (int i = 1; i < argc; ++i)
        arguments.append(pdf::fileNameFromBytes(argv[i]));
    Output output(stdout);
    Output errors(stderr);
    try {
        return static_cast<int>(runArguments(arguments, output, errors));
    } catch (const OutputError& error) {
        if (error.errorNumber == EPIPE)
            return static_cast<int>(ExitStatus::success);
        std::fprintf(stderr, "quillo-cli: standard output: %s\n", std::strerror(error.errorNumber));
        return static_cast<int>(ExitStatus::unreadableInput);
    }
}
