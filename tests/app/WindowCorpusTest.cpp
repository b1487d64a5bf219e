// SPDX-License-Identifier: AGPL-3.0-or-later
#include "app/DocumentVisit.h"
#include "pdf/PDFDocument.h"
#include "pdf/Tools.h"
#include "pdfview/PDFView.h"
#include "support/Corpus.h"
#include "support/PDFWriter.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QFile>

#include <array>
#include <functional>
#include <iostream>

namespace quillo {
namespace {

// As a rule every fourth file is gone through thoroughly.
const int stride = qEnvironmentVariableIntValue("QUILLO_CORPUS_PAGES") > 0 ? 1 : 4;

constexpr int screens = 40;
constexpr int fields = 40;

/// A crash then tells in which file it was.
void announce(const QString& path)
{
    std::cout << path.section(u'/', -2).toStdString() << std::endl;
}

void useDocument(DocumentVisit& visit)
{
    for (const double scale : {0.5, 1.0, 2.5})
        visit.scrollThrough(scale, screens);
    visit.search();
}

TEST(WindowCorpusTest, ShowsOrRefusesEveryRealFileInTime)
{
    const QStringList files = corpusFiles();
    if (files.isEmpty())
        GTEST_SKIP() << "there are no files at " QUILLO_CORPUS;
    DocumentVisit visit;
    int shown = 0;
    for (const QString& path : files) {
        SCOPED_TRACE(path.toStdString());
        if (!visit.open(path))
            continue;
        ++shown;
        // Whatever is asked of the view next, the next file is not held up by it.
        visit.view().goToEnd();
        visit.view().setAutoScales(true);
        QCoreApplication::processEvents();
        visit.view().setScaleFactor(1.0);
    }
    EXPECT_GT(shown, 450);
    EXPECT_GT(files.size() - shown, 0) << "some of the files are no PDF at all";
}

/// Parts of the files, so that none of the tests takes too long.
class WindowUseCorpusTest : public testing::TestWithParam<int>
{
protected:
    static QStringList files()
    {
        const QStringList all = corpusFiles();
        QStringList part;
        for (int i = GetParam() * stride; i < all.size(); i += 4 * stride)
            part.append(all[i]);
        return part;
    }

    TestFolder m_folder;
};

TEST_P(WindowUseCorpusTest, EveryFileIsScrolledSearchedFilledInAndSaved)
{
    if (files().isEmpty())
        GTEST_SKIP() << "there are no files at " QUILLO_CORPUS;
    DocumentVisit visit;
    const QString copy = m_folder.path(QStringLiteral("saved.pdf"));
    int shown = 0;
    int typed = 0;
    int notSaved = 0;
    for (const QString& path : files()) {
        SCOPED_TRACE(path.toStdString());
        announce(path);
        if (!visit.open(path))
            continue;
        ++shown;
        useDocument(visit);
        typed += visit.typeIntoFields(fields);
        if (const auto saved = visit.save(copy))
            EXPECT_EQ(programsLost(path, copy).join(u' ').toStdString(), "");
        else
            ++notSaved;
    }
    std::cout << files().size() << " files, " << shown << " of them shown, " << typed
              << " fields typed into, " << notSaved << " not saved\n";
    EXPECT_EQ(notSaved, 0);
}

void cutInHalf(const QString& path)
{
    QFile file(path);
    EXPECT_TRUE(file.resize(file.size() / 2));
}

void overwriteWithZeros(const QString& path)
{
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadWrite));
    file.write(QByteArray(static_cast<int>(file.size()), '\0'));
}

void replaceByAnother(const QString& path)
{
    PDFWriter writer;
    writer.addPage(showText(72, 700, "Another document"));
    QFile::remove(path);
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(writer.bytes());
}

TEST_P(WindowUseCorpusTest, AFileThatIsChangedUnderneathDoesNoHarm)
{
    if (files().isEmpty())
        GTEST_SKIP() << "there are no files at " QUILLO_CORPUS;
    DocumentVisit visit;
    const QString copy = m_folder.path(QStringLiteral("saved.pdf"));
    const auto remove = [](const QString& path) { EXPECT_TRUE(QFile::remove(path)); };
    int number = 0;
    int saved = 0;
    int notSaved = 0;
    for (const QString& path : files()) {
        SCOPED_TRACE(path.toStdString());
        announce(path);
        const QString opened = m_folder.path(QStringLiteral("opened %1.pdf").arg(++number));
        ASSERT_TRUE(QFile::copy(path, opened));
        QFile::setPermissions(opened, QFile::ReadOwner | QFile::WriteOwner);
        if (!visit.open(opened))
            continue;
        const std::array<std::function<void(const QString&)>, 4> changes{
            remove, cutInHalf, overwriteWithZeros, replaceByAnother};
        changes[static_cast<std::size_t>(number) % changes.size()](opened);
        visit.scrollThrough(1.0, screens);
        visit.typeIntoFields(2);
        if (visit.save(copy)) {
            EXPECT_EQ(programsLost(path, copy).join(u' ').toStdString(), "");
            ++saved;
        } else {
            ++notSaved;
        }
    }
    std::cout << saved << " saved, " << notSaved << " not\n";
}

INSTANTIATE_TEST_SUITE_P(Quarters, WindowUseCorpusTest, testing::Range(0, 4));

} // namespace
} // namespace quillo
