// SPDX-License-Identifier: AGPL-3.0-or-later
#include "cli/ProgramRun.h"
#include "support/EndlessPages.h"
#include "support/Printing.h"
#include "json/StrictJson.h"

#include <gtest/gtest.h>

#include <QProcess>

#include <csignal>
#include <sys/wait.h>

namespace quillo::cli {
namespace {

class InterruptionTest : public testing::Test
{
protected:
    /// So many pages that cost more than they may, and an ordinary one.
    QString slowDocument(int slowPages)
    {
        PDFWriter writer;
        addEndlessPages(writer, slowPages);
        writer.addPage(showText(72, 700, "ordinary"));
        return m_folder.write(QStringLiteral("slow.pdf"), writer.bytes());
    }

    void expectEndBy(int signal)
    {
        TerminalRun run({QStringLiteral("text"), QStringLiteral("--json"), slowDocument(100)}, 60);
        ASSERT_TRUE(run.receives("page 0 of 101")) << run.bytes().toStdString();
        run.sendSignal(signal);
        const int status = run.waitForEnd();
        EXPECT_TRUE(WIFSIGNALED(status));
        EXPECT_EQ(WTERMSIG(status), signal);
        EXPECT_EQ(run.shown(), QByteArray()) << "the terminal's line is not clean";
        EXPECT_TRUE(run.bytes().endsWith('\r'));
    }

    TestFolder m_folder;
};

TEST_F(InterruptionTest, ControlCEndsTheProgramAndLeavesTheLineClean)
{
    expectEndBy(SIGINT);
}

TEST_F(InterruptionTest, SoDoesTermination)
{
    expectEndBy(SIGTERM);
}

TEST_F(InterruptionTest, ASignalThatWasIgnoredAtTheStartStaysIgnored)
{
    // What the program starts with is what this process has.
    const auto before = std::signal(SIGINT, SIG_IGN);
    TerminalRun run({QStringLiteral("text"), QStringLiteral("--time-limit=1"), slowDocument(100)}, 60);
    std::signal(SIGINT, before);
    ASSERT_TRUE(run.receives("page 0 of 101")) << run.bytes().toStdString();
    run.sendSignal(SIGINT);
    const int status = run.waitForEnd();
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 1) << status;
}

TEST_F(InterruptionTest, AShellSeesTheUsualStatus)
{
    QProcess shell;
    shell.start(
        QStringLiteral("sh"),
        {QStringLiteral("-c"),
         QStringLiteral(
             "\"$0\" text --json --time-limit 100 \"$1\" & read line; kill -TERM $!; wait $!; echo $?"),
         QStringLiteral(QUILLO_CLI), slowDocument(100)});
    ASSERT_TRUE(shell.waitForStarted());
    shell.write("\n");
    ASSERT_TRUE(shell.waitForFinished(30'000));
    EXPECT_EQ(shell.readAllStandardOutput(), QByteArray("143\n"));
}

TEST_F(InterruptionTest, ATimeLimitEndsTheWaitForInput)
{
    // The terminal's input never ends.
    TerminalRun run({QStringLiteral("explain"), QStringLiteral("--time-limit"), QStringLiteral("0.3")}, 60);
    const int status = run.waitForEnd();
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 1);
    EXPECT_EQ(run.shown(), QByteArray("quillo-cli: -: the time limit of 0.3 s is over\n"));
}

TEST_F(InterruptionTest, ATimeLimitThatIsLongEnoughChangesNothing)
{
    const ProgramRun limited =
        runCli({QStringLiteral("text"), QStringLiteral("--time-limit=1e9"), sample("manual.pdf")});
    EXPECT_EQ(limited.status, 0);
    EXPECT_EQ(limited.output, runCli({QStringLiteral("text"), sample("manual.pdf")}).output);
}

TEST_F(InterruptionTest, TellsThePagesThatWereGivenUpOn)
{
    const QString path = slowDocument(1);
    const ProgramRun run = runCli({QStringLiteral("text"), QStringLiteral("--json"), path});
    EXPECT_EQ(run.status, 3);
    EXPECT_EQ(
        run.errorText(),
        QStringLiteral("quillo-cli: %1: given up on page 1, which asks for too much time or memory\n")
            .arg(path));
    const Json pages = parseJson(run.output).at("pageTexts");
    ASSERT_EQ(pages.size(), 2U);
    EXPECT_EQ(pages[0].at("text"), "");
    EXPECT_EQ(pages[1].at("text"), "ordinary\n");
}

TEST_F(InterruptionTest, AnInputThatCannotBeReadWeighsMoreThanOneThatIsReadInPart)
{
    const ProgramRun run =
        runCli({QStringLiteral("text"), QStringLiteral("/nowhere/missing.pdf"), slowDocument(1)});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.errors.count('\n'), 2) << run.errors.toStdString();
    EXPECT_TRUE(run.output.contains("ordinary"));
}

} // namespace
} // namespace quillo::cli
