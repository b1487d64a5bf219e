// SPDX-License-Identifier: AGPL-3.0-or-later
#include "cli/ProgramRun.h"
#include "support/PDFWriter.h"
#include "support/Printing.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QProcess>

#include <csignal>
#include <sys/wait.h>

namespace quillo::cli {
namespace {

using testing::HasSubstr;
using testing::Not;

constexpr const char* password = "sésame öffne";
constexpr const char* question = "Password of ";

/// The invoice, encrypted.
class PasswordTest : public testing::Test
{
protected:
    PasswordTest()
        : m_path(m_folder.path(QStringLiteral("locked.pdf")))
    {
        EXPECT_EQ(
            QProcess::execute(
                QStringLiteral("qpdf"),
                {QStringLiteral("--encrypt"), QString::fromUtf8(password), QStringLiteral("owner"),
                 QStringLiteral("256"), QStringLiteral("--"), sample("invoice.pdf"), m_path}),
            0);
    }

    /// Reads the invoice with a password file of this content.
    ProgramRun runWithFile(const QByteArray& content) const
    {
        const QString file = m_folder.write(QStringLiteral("password"), content);
        return runCli({QStringLiteral("text"), QStringLiteral("--password-file"), file, m_path});
    }

    QStringList readingIt() const { return {QStringLiteral("text"), m_path}; }

    TestFolder m_folder;
    const QString m_path;
};

TEST_F(PasswordTest, IsTheFirstLineOfAFile)
{
    for (const char* end : {"", "\n", "\r\n", "\nanother line\n"}) {
        const ProgramRun run = runWithFile(QByteArray(password) + end);
        EXPECT_EQ(run.status, 0) << run.errors.toStdString();
        EXPECT_THAT(run.output.toStdString(), HasSubstr("INV-204817"));
    }
    EXPECT_THAT(runWithFile("wrong\n").errors.toStdString(), HasSubstr("locked.pdf: the password is wrong"));
}

TEST_F(PasswordTest, ComesFromStandardInputOrAPipe)
{
    const ProgramRun input = runCli(
        {QStringLiteral("text"), QStringLiteral("--password-file=-"), m_path},
        {.input = QByteArray(password) + '\n'});
    EXPECT_THAT(input.output.toStdString(), HasSubstr("INV-204817")) << input.errors.toStdString();
    const ProgramRun pipe = runShell(
        "printf '%s\\n' \"$2\" | { exec 3<&0 </dev/null; \"$0\" text --password-file /dev/fd/3 \"$1\"; }",
        {m_path, QString::fromUtf8(password)});
    EXPECT_THAT(pipe.output.toStdString(), HasSubstr("INV-204817")) << pipe.errors.toStdString();
}

TEST_F(PasswordTest, AFileThatHoldsNoneIsNamed)
{
    EXPECT_THAT(
        runWithFile(QByteArray(10'000, 'x')).errors.toStdString(), HasSubstr("password: the first line"));
    EXPECT_THAT(runWithFile("caf\xe9\n").errors.toStdString(), HasSubstr("the password is not UTF-8"));
    const ProgramRun missing = runCli(
        {QStringLiteral("text"), QStringLiteral("--password-file"), QStringLiteral("/nowhere"), m_path});
    EXPECT_EQ(missing.status, 1);
    EXPECT_EQ(missing.output, QByteArray());
    EXPECT_THAT(missing.errors.toStdString(), HasSubstr("quillo-cli: /nowhere: No such file"));
}

TEST_F(PasswordTest, IsAskedForOnTheTerminalWithoutBeingShown)
{
    TerminalSession session(readingIt());
    ASSERT_TRUE(session.shows(QByteArray(question) + m_path.toUtf8() + ": "));
    EXPECT_FALSE(session.echoes());
    session.type(QByteArray(password) + '\n');
    EXPECT_EQ(session.waitForEnd(), 0);
    EXPECT_TRUE(session.echoes());
    EXPECT_THAT(session.shown().toStdString(), HasSubstr("INV-204817"));
    EXPECT_THAT(session.shown().toStdString(), Not(HasSubstr(password)));
}

TEST_F(PasswordTest, IsAskedForThreeTimesAtMost)
{
    TerminalSession session(readingIt());
    for (int i = 1; i <= 3; ++i) {
        ASSERT_TRUE(session.shows(question, i));
        session.type("wrong\n");
    }
    const auto status = session.waitForEnd();
    ASSERT_TRUE(status);
    EXPECT_EQ(WEXITSTATUS(*status), 1);
    EXPECT_EQ(session.shown().count(question), 3);
    EXPECT_EQ(session.shown().count("The password is wrong."), 2);
    EXPECT_THAT(session.shown().toStdString(), HasSubstr("locked.pdf: the password is wrong"));
}

TEST_F(PasswordTest, ASecondAnswerMayBeTheRightOne)
{
    TerminalSession session(readingIt());
    ASSERT_TRUE(session.shows(question));
    session.type("wrong\n");
    ASSERT_TRUE(session.shows(question, 2));
    session.type(QByteArray(password) + '\n');
    EXPECT_EQ(session.waitForEnd(), 0);
    EXPECT_THAT(session.shown().toStdString(), HasSubstr("INV-204817"));
}

TEST_F(PasswordTest, TheTerminalIsRestoredWhenTheQuestionIsInterrupted)
{
    TerminalSession session(readingIt());
    ASSERT_TRUE(session.shows(question));
    ASSERT_FALSE(session.echoes());
    session.type("half a passw\x03");
    const auto status = session.waitForEnd();
    ASSERT_TRUE(status);
    EXPECT_TRUE(session.echoes());
    EXPECT_TRUE(WIFSIGNALED(*status) && WTERMSIG(*status) == SIGINT) << *status;
    EXPECT_EQ(session.shown().toStdString(), question + m_path.toStdString() + ": \n") << "no complaint";
}

TEST_F(PasswordTest, TheTerminalIsRestoredWhenTheTimeIsOver)
{
    TerminalSession session({QStringLiteral("text"), QStringLiteral("--time-limit=1"), m_path});
    ASSERT_TRUE(session.shows(question));
    const auto status = session.waitForEnd();
    ASSERT_TRUE(status);
    EXPECT_TRUE(session.echoes());
    EXPECT_TRUE(WIFEXITED(*status) && WEXITSTATUS(*status) == 1);
    EXPECT_THAT(session.shown().toStdString(), HasSubstr(": \nquillo-cli: " + m_path.toStdString()));
}

TEST_F(PasswordTest, ATimeLimitNamesThePasswordFileThatIsWaitedFor)
{
    const ProgramRun run = runShell(
        "mkfifo \"$2\"; \"$0\" text --time-limit 0.3 --password-file \"$2\" \"$1\"",
        {m_path, m_folder.path(QStringLiteral("fifo"))});
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.errors.toStdString(), HasSubstr("/fifo: the time limit of 0.3 s is over"));
}

TEST_F(PasswordTest, TheEndOfTheInputIsNoAnswer)
{
    TerminalSession session(readingIt());
    ASSERT_TRUE(session.shows(question));
    session.type("\x04");
    const auto status = session.waitForEnd();
    ASSERT_TRUE(status);
    EXPECT_EQ(WEXITSTATUS(*status), 1);
    EXPECT_TRUE(session.echoes());
    EXPECT_THAT(session.shown().toStdString(), HasSubstr("a password is required"));
}

TEST_F(PasswordTest, NobodyIsAskedWhereAPasswordIsGivenOrNoneIsNeeded)
{
    TerminalSession given({QStringLiteral("text"), QStringLiteral("--password=wrong"), m_path});
    ASSERT_TRUE(given.waitForEnd());
    EXPECT_THAT(given.shown().toStdString(), HasSubstr("the password is wrong"));
    EXPECT_EQ(given.shown().count(question), 0);
    TerminalSession open({QStringLiteral("text"), sample("invoice.pdf")});
    EXPECT_EQ(open.waitForEnd(), 0);
    EXPECT_EQ(open.shown().count(question), 0);
}

} // namespace
} // namespace quillo::cli
