// SPDX-License-Identifier: AGPL-3.0-or-later
#include "cli/Progress.h"

#include "cli/ProgramRun.h"
#include "support/EndlessPages.h"
#include "support/Printing.h"

#include <gtest/gtest.h>

#include <sys/wait.h>

namespace quillo::cli {
namespace {

TEST(ProgressLineTest, TellsThePagesAndDrawsABar)
{
    EXPECT_EQ(
        progressLine(5, 20, 80), QStringLiteral("page 5 of 20 [##########..............................]"));
    EXPECT_EQ(progressLine(20, 20, 30), QStringLiteral("page 20 of 20 [#############]"));
}

TEST(ProgressLineTest, KeepsWithinTheTerminal)
{
    EXPECT_EQ(progressLine(5, 20, 25), QStringLiteral("page 5 of 20"));
    EXPECT_EQ(progressLine(5, 20, 8), QStringLiteral("page 5 "));
    EXPECT_EQ(progressLine(5, 20, 0), QString());
}

/// Pages that cost more than they may, all in all for some minutes.
QString slowDocument(const TestFolder& folder, int slowPages = 100)
{
    PDFWriter writer;
    addEndlessPages(writer, slowPages);
    writer.addPage(showText(72, 700, "ordinary"));
    return folder.write(QStringLiteral("slow.pdf"), writer.bytes());
}

TEST(ProgressTest, IsShownOnATerminalAndErasedInTheEnd)
{
    const TestFolder folder;
    const QString path = slowDocument(folder);
    TerminalRun run({QStringLiteral("text"), QStringLiteral("--time-limit"), QStringLiteral("1"), path}, 60);
    EXPECT_TRUE(run.receives("\rpage 0 of 101 [")) << run.bytes().toStdString();
    const int status = run.waitForEnd();
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 1);
    EXPECT_TRUE(run.bytes().contains('\r' + QByteArray(59, ' ') + '\r'));
    EXPECT_EQ(run.shown(), "quillo-cli: " + path.toUtf8() + ": the time limit of 1 s is over\n");
}

TEST(ProgressTest, IsNotWrittenToAFile)
{
    const TestFolder folder;
    const QString path = slowDocument(folder);
    const ProgramRun run = runCli({QStringLiteral("text"), QStringLiteral("--time-limit=0.6"), path});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.output, QByteArray());
    EXPECT_EQ(run.errorText(), QStringLiteral("quillo-cli: %1: the time limit of 0.6 s is over\n").arg(path));
}

} // namespace
} // namespace quillo::cli
