// SPDX-License-Identifier: AGPL-3.0-or-later
#include "support/Corpus.h"
#include "support/PDFWriter.h"
#include "support/ToolRun.h"

#include <gtest/gtest.h>

#include <QFile>

#include <algorithm>
#include <iostream>

namespace {

// Opening, printing, and drawing two pages for the comparison.
constexpr int maximumMilliseconds = 60'000;
constexpr int maximumMegabytes = 1536;
// Of ten thousand pixels.
constexpr int visibleDifference = 40;
constexpr int qpdfFoundErrors = 2;

class PrintingCorpusTest : public testing::TestWithParam<const char*>
{
};

TEST_P(PrintingCorpusTest, EveryFileIsPrintedAsItIsShown)
{
    const QStringList paths = corpusFiles(QLatin1String(GetParam()));
    if (paths.isEmpty())
        GTEST_SKIP() << "there are no files at " QUILLO_CORPUS "/" << GetParam();
    const TestFolder folder;
    const QString target = folder.path(QStringLiteral("sheets.pdf"));
    int printed = 0;
    int different = 0;
    int slowest = 0;
    int biggest = 0;
    for (const QString& path : paths) {
        SCOPED_TRACE(path.toStdString());
        QFile::remove(target);
        const auto probe = runTool(QStringLiteral(QUILLO_PRINT_PROBE), {path, target});
        ASSERT_TRUE(probe);
        EXPECT_TRUE(probe->exitCode == 0 || probe->exitCode == 1) << probe->output.toStdString();
        const QList<QByteArray> figures = probe->output.trimmed().split('\n').last().split(' ');
        ASSERT_EQ(figures.size(), 5) << probe->output.toStdString();
        EXPECT_LE(figures[0].toInt(), maximumMilliseconds);
        EXPECT_LE(figures[1].toInt(), maximumMegabytes);
        slowest = std::max(slowest, figures[0].toInt());
        biggest = std::max(biggest, figures[1].toInt());
        if (probe->exitCode != 0) {
            EXPECT_FALSE(QFile::exists(target));
            continue;
        }
        ++printed;
        if (figures[4].toInt() > visibleDifference) {
            ++different;
            std::cout << figures[4].toInt() << " of 10000 pixels differ in " << path.toStdString() << '\n';
        }
        if (const auto checked = runTool(QStringLiteral("qpdf"), {QStringLiteral("--check"), target})) {
            // Pictures and fonts are taken over with the damage that they have, which is worth a warning.
            EXPECT_NE(checked->exitCode, qpdfFoundErrors) << checked->output.toStdString();
        }
    }
    EXPECT_GT(printed, paths.size() / 2);
    // What is on a screen and not meant for paper, as buttons are, makes a difference.
    EXPECT_LE(different, paths.size() / 50 + 1);
    std::cout << printed << " of " << paths.size() << " files printed, " << different
              << " of them differ; at most " << slowest << " ms and " << biggest << " MB\n";
}

INSTANTIATE_TEST_SUITE_P(
    Folders, PrintingCorpusTest,
    testing::Values("documents", "hostile", "invoices", "scans", "viewer", "writers"),
    [](const auto& parameter) { return std::string(parameter.param); });

} // namespace
