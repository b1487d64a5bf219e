// SPDX-License-Identifier: AGPL-3.0-or-later
#include <gtest/gtest.h>

#include <QDir>
#include <QDirIterator>
#include <QProcess>

#include <algorithm>
#include <iostream>

namespace {

// Time is counted where it is spent, because the machine may be busy with other things; what spends none and
// does not end either is stopped by the patience.
constexpr int maximumMilliseconds = 10'000;
constexpr int patience = 60'000;
constexpr int maximumMegabytes = 1536;

class CorpusTest : public testing::TestWithParam<const char*>
{
protected:
    static QStringList files()
    {
        QStringList files;
        QDirIterator iterator(
            QDir(QStringLiteral(QUILLO_CORPUS)).filePath(QLatin1String(GetParam())),
            {QStringLiteral("*.pdf")}, QDir::Files, QDirIterator::Subdirectories);
        while (iterator.hasNext())
            files.append(iterator.next());
        files.sort();
        return files;
    }
};

TEST_P(CorpusTest, EveryFileIsReadAndDrawnOrRefused)
{
    const QStringList paths = files();
    if (paths.isEmpty())
        GTEST_SKIP() << "there are no files at " QUILLO_CORPUS "/" << GetParam();
    int opened = 0;
    int pages = 0;
    int slowest = 0;
    int biggest = 0;
    for (const QString& path : paths) {
        SCOPED_TRACE(path.toStdString());
        QProcess probe;
        probe.start(QStringLiteral(QUILLO_PDF_PROBE), {path});
        const bool hasEnded = probe.waitForFinished(patience);
        EXPECT_TRUE(hasEnded) << "it hangs";
        if (!hasEnded) {
            probe.kill();
            probe.waitForFinished();
            continue;
        }
        ASSERT_EQ(probe.exitStatus(), QProcess::NormalExit) << probe.readAllStandardError().toStdString();
        EXPECT_LE(probe.exitCode(), 1) << probe.readAllStandardError().toStdString();
        const QList<QByteArray> figures = probe.readAllStandardOutput().trimmed().split(' ');
        ASSERT_EQ(figures.size(), 3) << probe.readAllStandardError().toStdString();
        // Neither libraries nor the engine talk to the terminal.
        EXPECT_EQ(probe.readAllStandardError().toStdString(), "");
        EXPECT_LE(figures[0].toInt(), maximumMilliseconds);
        EXPECT_LE(figures[1].toInt(), maximumMegabytes);
        opened += probe.exitCode() == 0 ? 1 : 0;
        slowest = std::max(slowest, figures[0].toInt());
        biggest = std::max(biggest, figures[1].toInt());
        pages += figures[2].toInt();
    }
    EXPECT_GT(opened, paths.size() / 2);
    std::cout << opened << " of " << paths.size() << " files open, " << pages << " pages; at most " << slowest
              << " ms and " << biggest << " MB\n";
}

INSTANTIATE_TEST_SUITE_P(
    Folders, CorpusTest, testing::Values("documents", "hostile", "invoices", "scans", "viewer", "writers"),
    [](const auto& parameter) { return std::string(parameter.param); });

} // namespace
