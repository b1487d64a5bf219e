// SPDX-License-Identifier: AGPL-3.0-or-later
#include "support/PDFWriter.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QScopeGuard>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>
#include <filesystem>

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

    /// True while the program has a file open whose name ends like this.
    bool holdsFileOf(const QString& ending) const
    {
        const QDir descriptors(QStringLiteral("/proc/%1/fd").arg(m_process.processId()));
        const QFileInfoList entries = descriptors.entryInfoList(QDir::AllEntries | QDir::System);
        return std::any_of(entries.begin(), entries.end(), [&](const QFileInfo& entry) {
            return entry.symLinkTarget().endsWith(ending);
        });
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

TEST_F(ProgramTest, OpensFilesWhoseNamesMeanNothingToQt)
{
    const TestFolder folder;
    PDFWriter writer;
    writer.addPage({});
    m_process.setWorkingDirectory(folder.path(QString()));
    // The folder cannot remove what Qt cannot name.
    const auto removeAll = qScopeGuard([&] {
        for (const auto& entry : std::filesystem::directory_iterator(folder.path(QString()).toStdString()))
            std::filesystem::remove(entry);
    });
    // As the shell writes them: a byte that is no UTF-8, and a colon at the start.
    for (const QByteArray& name : {QByteArray("caf\\351.pdf"), QByteArray(":colon.pdf")}) {
        folder.write(QStringLiteral("plain.pdf"), writer.bytes());
        m_process.start(
            QStringLiteral("sh"), {QStringLiteral("-c"),
                                   QStringLiteral("name=$(printf '%1'); mv plain.pdf \"$name\"; "
                                                  "exec \"$0\" \"$name\"")
                                       .arg(QString::fromLatin1(name)),
                                   QStringLiteral(QUILLO_PROGRAM)});
        ASSERT_TRUE(m_process.waitForStarted());
        EXPECT_TRUE(QTest::qWaitFor([this] { return holdsFileOf(QStringLiteral(".pdf")); }, 20000))
            << name.toStdString();
        m_process.kill();
        ASSERT_TRUE(m_process.waitForFinished());
    }
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
