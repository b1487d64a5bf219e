// SPDX-License-Identifier: AGPL-3.0-or-later
#include "cli/ProgramRun.h"
#include "support/Printing.h"
#include "json/StrictJson.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QDirIterator>

#include <iostream>

namespace quillo::cli {
namespace {

// The machine may be busy with other things, so time is counted where it is spent; what waits for nothing and
// spends nothing ends by the patience.
constexpr std::chrono::seconds maximumTime{10};
constexpr std::chrono::seconds patience{60};
constexpr qint64 maximumBytes = qint64{1536} << 20;

QStringList corpusFiles()
{
    QStringList files;
    QDirIterator iterator(
        QStringLiteral(QUILLO_CORPUS), {QStringLiteral("*.pdf")}, QDir::Files, QDirIterator::Subdirectories);
    while (iterator.hasNext())
        files.append(iterator.next());
    files.sort();
    return files;
}

class CorpusTest : public testing::TestWithParam<const char*>
{
};

TEST_P(CorpusTest, EveryFileIsReadOrRefusedInOneLine)
{
    const QStringList files = corpusFiles();
    if (files.isEmpty())
        GTEST_SKIP() << "there is no corpus at " QUILLO_CORPUS;
    int readable = 0;
    qint64 peak = 0;
    std::chrono::milliseconds slowest{};
    for (const QString& path : files) {
        const ProgramRun run = runCli(words(GetParam()) + QStringList(path), {.patience = patience});
        const std::string name = path.toStdString();
        ASSERT_TRUE(run.status == 0 || run.status == 1) << name << " ends with " << run.status;
        if (run.status == 0) {
            ++readable;
            EXPECT_EQ(run.errors, QByteArray()) << name;
            EXPECT_NO_THROW(parseJson(run.output)) << name;
        } else {
            EXPECT_EQ(run.errors.count('\n'), 1) << name << ": " << run.errors.toStdString();
            EXPECT_TRUE(run.errorText().startsWith(QStringLiteral("quillo-cli: %1: ").arg(path))) << name;
            EXPECT_EQ(run.output, QByteArray()) << name;
        }
        EXPECT_LE(run.cpuTime, maximumTime) << name << " takes " << run.cpuTime.count() << " ms";
        EXPECT_LE(run.peakBytes, maximumBytes) << name;
        peak = std::max(peak, run.peakBytes);
        slowest = std::max(slowest, run.cpuTime);
    }
    EXPECT_GT(readable, files.size() / 2);
    std::cout << readable << " of " << files.size() << " files are readable; at most " << slowest.count()
              << " ms and " << (peak >> 20) << " MB\n";
}

INSTANTIATE_TEST_SUITE_P(
    Commands, CorpusTest, testing::Values("text --json", "analyze --json"), [](const auto& parameter) {
        return std::string(parameter.param).substr(0, std::string(parameter.param).find(' '));
    });

} // namespace
} // namespace quillo::cli
