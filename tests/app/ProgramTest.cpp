// SPDX-License-Identifier: AGPL-3.0-or-later
#include "support/PDFWriter.h"

#include <gtest/gtest.h>

#include <QProcess>
#include <QTemporaryDir>

namespace quillo {
namespace {

/// The program itself, without a screen and with settings of its own.
class ProgramTest : public testing::Test
{
protected:
    ProgramTest()
    {
        auto environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
        environment.insert(QStringLiteral("XDG_CONFIG_HOME"), m_settings.path());
        m_process.setProcessEnvironment(environment);
    }

    ~ProgramTest() override
    {
        m_process.kill();
        m_process.waitForFinished();
    }

    void start(const QStringList& arguments)
    {
        m_process.start(QStringLiteral(QUILLO_PROGRAM), arguments);
        ASSERT_TRUE(m_process.waitForStarted());
    }

    /// Waits for a line on standard output.
    bool prints(const QByteArray& line)
    {
        while (!m_output.contains(line)) {
            if (!m_process.waitForReadyRead(20000))
                return false;
            m_output += m_process.readAllStandardOutput();
        }
        return true;
    }

    QTemporaryDir m_settings;
    QProcess m_process;
    QByteArray m_output;
};

TEST_F(ProgramTest, TellsItsVersion)
{
    start({QStringLiteral("--version")});
    ASSERT_TRUE(m_process.waitForFinished());
    EXPECT_EQ(m_process.exitCode(), 0);
    EXPECT_EQ(m_process.readAllStandardOutput(), "Quillo 1.0.0\n");
}

TEST_F(ProgramTest, TellsHowItIsCalled)
{
    start({QStringLiteral("--help")});
    ASSERT_TRUE(m_process.waitForFinished());
    EXPECT_EQ(m_process.exitCode(), 0);
    EXPECT_TRUE(m_process.readAllStandardOutput().contains("[file]"));
}

TEST_F(ProgramTest, RefusesOptionsThatItDoesNotKnow)
{
    start({QStringLiteral("--no-such-option")});
    ASSERT_TRUE(m_process.waitForFinished());
    EXPECT_NE(m_process.exitCode(), 0);
}

TEST_F(ProgramTest, StaysOpenWhenTheFileIsNoPDFAndSaysSoOnTheConsole)
{
    const TestFolder folder;
    start({folder.write(QStringLiteral("broken.pdf"), "no PDF")});
    EXPECT_TRUE(prints("Failed to load PDF document\n"));
    EXPECT_EQ(m_process.state(), QProcess::Running);
}

TEST_F(ProgramTest, StaysOpenWhenTheFileIsMissing)
{
    start({QStringLiteral("/no such folder/missing.pdf")});
    EXPECT_TRUE(prints("Failed to load PDF document\n"));
    EXPECT_EQ(m_process.state(), QProcess::Running);
}

TEST_F(ProgramTest, ReadsAFileFromItsOwnFolder)
{
    const TestFolder folder;
    folder.write(QStringLiteral("broken.pdf"), "no PDF");
    m_process.setWorkingDirectory(folder.path(QString()));
    start({QStringLiteral("broken.pdf")});
    EXPECT_TRUE(prints("Failed to load PDF document\n"));
}

} // namespace
} // namespace quillo
