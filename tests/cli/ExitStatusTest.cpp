// SPDX-License-Identifier: AGPL-3.0-or-later
#include "cli/ProgramRun.h"
#include "support/PDFWriter.h"
#include "support/Printing.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QProcess>

#include <csignal>
#include <unistd.h>

namespace quillo::cli {
namespace {

using testing::ContainsRegex;
using testing::HasSubstr;
using testing::StartsWith;

/// Expects that the input was refused as it should be, and gives the reason.
std::string reasonFor(const QString& name, const ProgramRun& run)
{
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.output, QByteArray());
    const std::string start = "quillo-cli: " + name.toStdString() + ": ";
    EXPECT_THAT(run.errors.toStdString(), StartsWith(start));
    EXPECT_EQ(run.errors.count('\n'), 1) << run.errors.toStdString();
    EXPECT_TRUE(run.errors.endsWith('\n'));
    return run.errors.toStdString().substr(
        std::min(start.size(), static_cast<std::size_t>(run.errors.size())));
}

std::string reasonFor(const QString& path)
{
    return reasonFor(path, runCli({QStringLiteral("text"), path}));
}

/// The invoice, encrypted with this password.
QString encryptedInvoice(const TestFolder& folder, const char* password)
{
    QString path = folder.path(QStringLiteral("locked.pdf"));
    const QString word = QString::fromUtf8(password);
    EXPECT_EQ(
        QProcess::execute(
            QStringLiteral("qpdf"),
            {QStringLiteral("--encrypt"), word, QStringLiteral("owner"), QStringLiteral("256"),
             QStringLiteral("--"), sample("invoice.pdf"), path}),
        0);
    return path;
}

TEST(ExitStatusTest, HelpIsNoError)
{
    const ProgramRun run = runCli(words("--help"));
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.errors, QByteArray());
    for (const char* word :
         {"text", "classify", "extract", "actions", "explain", "analyze", "--json", "--password",
          "--password-file", "--plain", "--text", "--version"})
        EXPECT_THAT(run.output.toStdString(), HasSubstr(word));
}

TEST(ExitStatusTest, TellsItsVersion)
{
    const ProgramRun run = runCli(words("--version"));
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.output, QByteArray("quillo-cli 1.0.0\n"));
}

TEST(ExitStatusTest, WrongUsageIsTwoWithOneLine)
{
    for (const char* line :
         {"", "text", "nonsense a.pdf", "text --nonsense a.pdf", "text a.pdf --password",
          "extract --text x a.pdf"}) {
        const ProgramRun run = runCli(words(line));
        EXPECT_EQ(run.status, 2) << line;
        EXPECT_EQ(run.output, QByteArray()) << line;
        EXPECT_THAT(run.errors.toStdString(), StartsWith("quillo-cli: "));
        EXPECT_THAT(run.errors.toStdString(), HasSubstr("(see quillo-cli --help)\n"));
        EXPECT_EQ(run.errors.count('\n'), 1) << line;
    }
}

TEST(ExitStatusTest, AMissingFileIsOne)
{
    EXPECT_THAT(reasonFor(QStringLiteral("/nowhere/missing.pdf")), HasSubstr("exist"));
}

TEST(ExitStatusTest, AFolderIsOne)
{
    const TestFolder folder;
    EXPECT_THAT(reasonFor(folder.path({})), HasSubstr("folder"));
    EXPECT_NE(
        reasonFor(
            folder.path({}), runCli({QStringLiteral("text"), QStringLiteral("--plain"), folder.path({})})),
        "");
}

TEST(ExitStatusTest, AnEmptyFileIsOne)
{
    const TestFolder folder;
    EXPECT_NE(reasonFor(folder.write(QStringLiteral("empty.pdf"), {})), "\n");
}

TEST(ExitStatusTest, AFileThatIsNoPdfIsOne)
{
    const TestFolder folder;
    EXPECT_NE(reasonFor(folder.write(QStringLiteral("text.pdf"), "This is not a PDF file.\n")), "\n");
}

TEST(ExitStatusTest, AFileThatMayNotBeReadIsOne)
{
    if (geteuid() == 0)
        GTEST_SKIP() << "the superuser may read everything";
    const TestFolder folder;
    const QString path = folder.write(QStringLiteral("secret.pdf"), "%PDF-1.7");
    QFile(path).setPermissions({});
    EXPECT_THAT(reasonFor(path), HasSubstr("ermission"));
}

TEST(ExitStatusTest, AMissingPlainFileIsOne)
{
    const QString path = QStringLiteral("/nowhere/missing.txt");
    EXPECT_NE(reasonFor(path, runCli({QStringLiteral("text"), QStringLiteral("--plain"), path})), "\n");
}

TEST(ExitStatusTest, AnEncryptedFileNeedsItsPassword)
{
    const TestFolder folder;
    const QString path = encryptedInvoice(folder, "sesame");
    EXPECT_THAT(reasonFor(path), HasSubstr("password"));
    const QString wrong = QStringLiteral("--password=open");
    EXPECT_THAT(
        reasonFor(path, runCli({QStringLiteral("text"), wrong, path})), HasSubstr("password is wrong"));
    for (const char* password : {"--password=sesame", "--password=owner"}) {
        const ProgramRun run = runCli({QStringLiteral("text"), QString::fromUtf8(password), path});
        EXPECT_EQ(run.status, 0) << password << ": " << run.errors.toStdString();
        EXPECT_THAT(run.output.toStdString(), HasSubstr("INV-204817"));
    }
}

TEST(ExitStatusTest, APasswordThatIsNotNeededDoesNotMatter)
{
    const ProgramRun run =
        runCli({QStringLiteral("text"), QStringLiteral("--password=x"), sample("invoice.pdf")});
    EXPECT_EQ(run.status, 0);
}

TEST(ExitStatusTest, ANameWithLineFeedsAndEscapesStaysOnOneLine)
{
    const ProgramRun run = runCli({QStringLiteral("text"), QStringLiteral("/no\n\x1b[31mwhere.pdf")});
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.errors.toStdString(), StartsWith("quillo-cli: /no\u240a\u241b[31mwhere.pdf: "));
    EXPECT_EQ(run.errors.count('\n'), 1);
}

TEST(ExitStatusTest, AReaderThatHasEnoughEndsItQuietly)
{
    // More than a pipe holds, and the reading end is closed at once.
    QProcess shell;
    shell.start(
        QStringLiteral("sh"),
        {QStringLiteral("-c"),
         QStringLiteral("{ \"$0\" text --json --plain \"$1\"; echo \"status $?\" >&2; } | head -c 1"),
         QStringLiteral(QUILLO_CLI), sample("manual.pdf")});
    ASSERT_TRUE(shell.waitForFinished(30'000));
    EXPECT_EQ(shell.readAllStandardError(), QByteArray("status 0\n"));
    EXPECT_EQ(shell.readAllStandardOutput(), QByteArray("{"));
}

TEST(ExitStatusTest, AFullDiskIsReported)
{
    const ProgramRun run =
        runCli({QStringLiteral("text"), sample("manual.pdf")}, {.outputPath = QStringLiteral("/dev/full")});
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.errors.toStdString(), ContainsRegex("^quillo-cli: standard output: .+\n$"));
}

TEST(ExitStatusTest, AsciiLocalesChangeNothing)
{
    const ProgramSetting ascii = {.environment = words("LC_ALL=C LANG=C")};
    const ProgramRun run = runCli({QStringLiteral("text"), sample("multilingual.pdf")}, ascii);
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.errors, QByteArray());
    EXPECT_THAT(run.output.toStdString(), HasSubstr("Śniadanie podajemy"));
}

} // namespace
} // namespace quillo::cli
