// SPDX-License-Identifier: AGPL-3.0-or-later
#include "support/Corpus.h"

#include <gtest/gtest.h>

#include <QProcess>
#include <QStandardPaths>

#include <algorithm>
#include <iostream>
#include <vector>

namespace {

// Of the pixels of a picture, those that may differ by more than a shade. In nearly all pictures there is
// none.
constexpr double toleratedShare = 0.01;

// The least that the view gives a page. One that is given up earlier is not too slow.
constexpr double pageSeconds = 5.0;

// The ways in which a page is turned and scaled, see ComparePages.cpp.
constexpr int ways = 12;

struct Tally
{
    int files = 0;
    int refused = 0;
    int compared = 0;
    int equal = 0;
    int tooBig = 0;
    int tooSlow = 0;
    int alone = 0;
    int neither = 0;
    double worstShare = 0.0;
    QString worstFile;
};

/// Every fourth file.
class RenderingCorpusTest : public testing::TestWithParam<int>
{
protected:
    static QList<QByteArray> pictures(const QString& path, int index, Tally& tally)
    {
        // As a rule each file shows its first page in two of the ways, and the next file in the next two.
        const int pages = qEnvironmentVariableIntValue("QUILLO_CORPUS_PAGES");
        const QStringList arguments =
            pages > 0
                ? QStringList{QString::number(pages), QStringLiteral("0"), QStringLiteral("1")}
                : QStringList{
                      QStringLiteral("1"), QString::number(index % (ways / 2)), QString::number(ways / 2)};
        QProcess process;
        process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        process.start(QStringLiteral(QUILLO_COMPARE_PAGES), QStringList{path} + arguments);
        process.waitForFinished(-1);
        EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
        EXPECT_LE(process.exitCode(), 1);
        tally.refused += process.exitCode() == 1;
        ++tally.files;
        return process.readAllStandardOutput().trimmed().split('\n');
    }

    static void check(const QByteArray& picture, const QString& path, Tally& tally)
    {
        const QList<QByteArray> words = picture.split(' ');
        if (words.size() != 7)
            return;
        SCOPED_TRACE(picture.toStdString());
        const QByteArray& outcome = words[3];
        const double share = words[4].toDouble();
        const double seconds = words[6].toDouble();
        tally.tooBig += outcome == "too-big";
        tally.alone += outcome == "alone";
        tally.neither += outcome == "neither";
        if (outcome == "missing") {
            EXPECT_GE(seconds, pageSeconds) << "the page is not shown although there was time";
            ++tally.tooSlow;
        } else if (outcome == "compared") {
            EXPECT_LE(share, toleratedShare);
            ++tally.compared;
            tally.equal += share == 0.0;
            if (share > tally.worstShare) {
                tally.worstShare = share;
                tally.worstFile = path;
            }
        }
    }
};

TEST_P(RenderingCorpusTest, TheViewShowsWhatMuPDFDraws)
{
    if (QStandardPaths::findExecutable(QStringLiteral("mutool")).isEmpty())
        GTEST_SKIP() << "mutool is not installed";
    const QStringList files = corpusFiles();
    if (files.isEmpty())
        GTEST_SKIP() << "there are no files at " QUILLO_CORPUS;
    Tally tally;
    for (int i = GetParam(); i < files.size(); i += 4) {
        SCOPED_TRACE(files[i].toStdString());
        for (const QByteArray& picture : pictures(files[i], i, tally))
            check(picture, files[i], tally);
    }
    EXPECT_GT(tally.compared, tally.files / 2);
    std::cout << tally.files << " files, " << tally.refused << " of them refused; " << tally.compared
              << " pictures compared, " << tally.equal << " of them equal but for shades; at worst "
              << tally.worstShare * 100 << " % of the pixels differ (" << tally.worstFile.toStdString()
              << "); too big " << tally.tooBig << ", too slow " << tally.tooSlow
              << ", drawn by the view alone " << tally.alone << ", by neither " << tally.neither << "\n";
}

INSTANTIATE_TEST_SUITE_P(Quarters, RenderingCorpusTest, testing::Range(0, 4));

} // namespace
