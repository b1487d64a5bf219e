// SPDX-License-Identifier: AGPL-3.0-or-later
#include "printing/PrintJob.h"
#include "printing/RunningPrints.h"
#include "support/PDFWriter.h"
#include "support/Printing.h"
#include "support/SlowlyPrinted.h"
#include "support/ToolRun.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QTest>
#include <QTranslator>

#include <numeric>

namespace quillo {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr int patience = 30'000;

/// A language in which everything is said in capitals.
class Shouting : public QTranslator
{
public:
    bool isEmpty() const override { return false; }
    QString translate(const char*, const char* text, const char*, int) const override
    {
        return QString::fromUtf8(text).toUpper();
    }
};

class PrintJobTest : public testing::Test
{
protected:
    PrintJobTest()
        : m_path(qgetenv("PATH"))
    {
        QDir().mkpath(m_folder.path(QStringLiteral("out")));
        QDir().mkpath(m_folder.path(QStringLiteral("bin")));
        qputenv("TMPDIR", QFile::encodeName(m_folder.path(QStringLiteral("tmp"))));
        QDir().mkpath(m_folder.path(QStringLiteral("tmp")));
        m_settings.file = m_folder.path(QStringLiteral("out/sheets.pdf"));
    }
    ~PrintJobTest() override
    {
        qputenv("PATH", m_path);
        qunsetenv("TMPDIR");
    }

    void makeJob(int pageCount)
    {
        PDFWriter writer;
        for (int i = 1; i <= pageCount; ++i)
            writer.addPage(showText(72, 700, "Page" + QByteArray::number(i)));
        makeJob(m_folder.write(QStringLiteral("in.pdf"), writer.bytes()));
    }
    void makeJob(const QString& path)
    {
        const auto document = *pdf::PDFDocument::open(path);
        m_settings.layout.pages.resize(static_cast<std::size_t>(document->pageCount()));
        std::iota(m_settings.layout.pages.begin(), m_settings.layout.pages.end(), 0);
        m_job = std::make_unique<PrintJob>(document, m_settings, QStringLiteral("in.pdf"));
        QObject::connect(m_job.get(), &PrintJob::printed, [this](const pdf::PrintOutcome& outcome) {
            m_outcome = outcome;
        });
        QObject::connect(
            m_job.get(), &PrintJob::failed, [this](const QString& reason) { m_reason = reason; });
    }
    bool waitForEnd()
    {
        return QTest::qWaitFor([this] { return m_outcome || !m_reason.isEmpty(); }, patience);
    }

    /// Prints in vain and returns what appears on standard output meanwhile.
    std::string consoleOfFailure()
    {
        testing::internal::CaptureStdout();
        m_job->start();
        const bool isOver = waitForEnd();
        std::string console = testing::internal::GetCapturedStdout();
        EXPECT_TRUE(isOver);
        return console;
    }

    /// Puts a program in the place of the one that takes files for the printing system.
    void setSpooler(const QByteArray& script)
    {
        const QString path = m_folder.write(QStringLiteral("bin/lp"), "#!/bin/sh\n" + script);
        ASSERT_TRUE(QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
        qputenv("PATH", QFile::encodeName(m_folder.path(QStringLiteral("bin"))) + ':' + m_path);
        m_settings.printer = QStringLiteral("Office Printer");
        m_settings.file.clear();
    }

    QStringList filesIn(const char* folder) const
    {
        return QDir(m_folder.path(QString::fromLatin1(folder)))
            .entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden);
    }
    QByteArray read(const char* name) const
    {
        QFile file(m_folder.path(QString::fromLatin1(name)));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    const QByteArray m_path;
    TestFolder m_folder;
    PrintSettings m_settings;
    std::unique_ptr<PrintJob> m_job;
    std::optional<pdf::PrintOutcome> m_outcome;
    QString m_reason;
};

TEST_F(PrintJobTest, WritesTheFileAndTellsHowFarItIs)
{
    makeJob(3);
    QSignalSpy progress(m_job.get(), &PrintJob::progressed);
    m_job->start();
    ASSERT_TRUE(waitForEnd());
    ASSERT_TRUE(m_outcome) << m_reason.toStdString();
    EXPECT_EQ(m_outcome->sheets, 3);
    ASSERT_FALSE(progress.isEmpty());
    EXPECT_EQ(progress.last(), (QVariantList{3, 3}));
    EXPECT_EQ((*pdf::PDFDocument::open(m_settings.file))->pageCount(), 3);
}

TEST_F(PrintJobTest, SaysWhyTheFileCannotBeWritten)
{
    m_settings.file = m_folder.path(QStringLiteral("missing/sheets.pdf"));
    makeJob(1);
    m_job->start();
    ASSERT_TRUE(waitForEnd());
    EXPECT_EQ(m_reason, QStringLiteral("The folder of the file does not exist."));
}

TEST_F(PrintJobTest, SaysThatTheFileIsNoFile)
{
    m_settings.file = m_folder.path(QStringLiteral("out"));
    makeJob(1);
    m_job->start();
    ASSERT_TRUE(waitForEnd());
    EXPECT_EQ(m_reason, QStringLiteral("What has this name is no file that could be replaced."));
}

TEST_F(PrintJobTest, SaysThatTheFileIsTheDocumentItself)
{
    m_settings.file = m_folder.path(QStringLiteral("in.pdf"));
    makeJob(1);
    m_job->start();
    ASSERT_TRUE(waitForEnd());
    EXPECT_EQ(m_reason, QStringLiteral("A document is not printed over its own file."));
}

TEST_F(PrintJobTest, GivesEveryReasonInTheUsersLanguage)
{
    Shouting translator;
    QCoreApplication::installTranslator(&translator);
    m_settings.file = m_folder.path(QStringLiteral("missing/sheets.pdf"));
    makeJob(1);
    const std::string console = consoleOfFailure();
    EXPECT_EQ(m_reason, QStringLiteral("THE FOLDER OF THE FILE DOES NOT EXIST."));
    EXPECT_EQ(console, "❌ Printing failed: the folder of the file does not exist\n");
}

TEST_F(PrintJobTest, LeavesNoFileWhenItIsCancelled)
{
    makeJob(writeSlowlyPrinted(m_folder));
    m_job->start();
    ASSERT_TRUE(QTest::qWaitFor([&] { return !filesIn("out").isEmpty(); }, patience)) << "it has begun";
    m_job->cancel();
    EXPECT_TRUE(QTest::qWaitFor([&] { return filesIn("out").isEmpty(); }, patience));
    EXPECT_FALSE(m_outcome);
    EXPECT_EQ(m_reason, QString()) << "what the user has cancelled has not failed";
}

TEST_F(PrintJobTest, LeavesNoFileWhenItIsDestroyed)
{
    makeJob(writeSlowlyPrinted(m_folder));
    m_job->start();
    ASSERT_TRUE(QTest::qWaitFor([&] { return !filesIn("out").isEmpty(); }, patience));
    m_job.reset();
    // As the program does before it ends.
    waitForRunningPrints(std::chrono::milliseconds(patience));
    EXPECT_THAT(filesIn("out"), IsEmpty());
}

TEST_F(PrintJobTest, HandsThePrintingSystemAPDFFileWithItsOptions)
{
    const QByteArray out = QFile::encodeName(m_folder.path(QStringLiteral("out")));
    setSpooler(
        "printf '%s\\n' \"$@\" > " + out + "/arguments\nfor last; do :; done\ncp \"$last\" " + out +
        "/received.pdf\necho 'request id is Office-1 (1 file)'\n");
    m_settings.printerCopies = 3;
    m_settings.printerOptions = {QStringLiteral("media=A4"), QStringLiteral("sides=two-sided-long-edge")};
    makeJob(2);
    m_job->start();
    ASSERT_TRUE(waitForEnd());
    ASSERT_TRUE(m_outcome) << m_reason.toStdString();
    QByteArrayList arguments = read("out/arguments").trimmed().split('\n');
    EXPECT_TRUE(arguments.takeLast().endsWith(".pdf"));
    EXPECT_EQ(
        arguments.join(' '),
        QByteArray("-d Office Printer -t in.pdf -n 3 -o media=A4 -o sides=two-sided-long-edge --"));
    const auto text = runTool(
        QStringLiteral("pdftotext"),
        {m_folder.path(QStringLiteral("out/received.pdf")), QStringLiteral("-")});
    if (text) {
        EXPECT_EQ(text->output.simplified(), QByteArray("Page1 Page2")) << "text stays text";
    }
    m_job.reset();
    waitForRunningPrints(std::chrono::milliseconds(patience));
    EXPECT_THAT(filesIn("tmp"), IsEmpty()) << "nothing is left behind";
}

TEST_F(PrintJobTest, KeepsWhatThePrintingSystemSaysForTheConsole)
{
    setSpooler("echo 'lp: Error - The printer or class' >&2\necho 'does not exist.' >&2\nexit 3\n");
    makeJob(1);
    const std::string console = consoleOfFailure();
    EXPECT_EQ(m_reason, QStringLiteral("The printing system did not accept the document."));
    EXPECT_EQ(
        console,
        "❌ Printing failed: lp ended with status 3. lp: Error - The printer or class does not exist.\n");
}

TEST_F(PrintJobTest, SaysThatThereIsNoPrintingSystem)
{
    setSpooler({});
    ASSERT_TRUE(QFile::remove(m_folder.path(QStringLiteral("bin/lp"))));
    qputenv("PATH", QFile::encodeName(m_folder.path(QStringLiteral("bin"))));
    makeJob(1);
    m_job->start();
    ASSERT_TRUE(waitForEnd());
    EXPECT_EQ(m_reason, QStringLiteral("The printing system is not installed."));
}

TEST_F(PrintJobTest, StopsHandingOverWhenItIsCancelled)
{
    const QByteArray out = QFile::encodeName(m_folder.path(QStringLiteral("out")));
    setSpooler("echo $$ > " + out + "/process\nexec sleep 600\n");
    makeJob(1);
    m_job->start();
    ASSERT_TRUE(QTest::qWaitFor([&] { return read("out/process").endsWith('\n'); }, patience));
    const QString process = QStringLiteral("/proc/") + QString::fromLatin1(read("out/process").trimmed());
    m_job.reset();
    EXPECT_TRUE(QTest::qWaitFor([&] { return !QFile::exists(process); }, patience));
    waitForRunningPrints(std::chrono::milliseconds(patience));
    EXPECT_THAT(filesIn("tmp"), IsEmpty());
}

} // namespace
} // namespace quillo
