// SPDX-License-Identifier: AGPL-3.0-or-later
#include "document/PDFTextExtractor.h"
#include "support/EndlessPages.h"
#include "support/PDFWriter.h"
#include "support/Printing.h"
#include "support/ToolRun.h"

#include <gtest/gtest.h>

#include <QFile>

#include <atomic>
#include <numeric>

namespace quillo {
namespace {

using namespace std::chrono_literals;
using Code = pdf::PDFError::Code;

void addTextPages(PDFWriter& writer, int count, const QByteArray& text)
{
    for (int i = 0; i < count; ++i)
        writer.addPage(showText(72, 700, text + ' ' + QByteArray::number(i)));
}

PDFWriter textPages(int count, const QByteArray& text)
{
    PDFWriter writer;
    addTextPages(writer, count, text);
    return writer;
}

class ReadDocumentTest : public testing::Test
{
protected:
    static pdf::Result<PDFTextExtractor::Reading> read(const QString& path, const ReadingOptions& options)
    {
        return PDFTextExtractor::readDocument(path, std::nullopt, {}, options);
    }

    TestFolder m_folder;
};

TEST_F(ReadDocumentTest, GivesUpOnSlowPagesOnlyAndOnTheSameInEveryRun)
{
    constexpr int slowPages = 12;
    constexpr int ordinaryPages = 40;
    constexpr int wordsPerLine = 50;
#ifdef __SANITIZE_THREAD__
    constexpr auto pageTime = 2000ms;
#else
    constexpr auto pageTime = 200ms;
#endif
    PDFWriter writer;
    addEndlessPages(writer, slowPages);
    // Full ones, which cost some milliseconds each.
    QByteArray content;
    for (int line = 0; line < 100; ++line)
        content += showText(10, 780 - 7 * line, QByteArray("ordinary ").repeated(wordsPerLine));
    for (int i = 0; i < ordinaryPages; ++i)
        writer.addPage(content, "/MediaBox[0 0 2600 792]");
    const QString path = m_folder.write(QStringLiteral("slow.pdf"), writer.bytes());
    std::vector<std::int64_t> expected(slowPages);
    std::iota(expected.begin(), expected.end(), 0);

    for (int run = 0; run < 2; ++run) {
        const auto reading = read(path, {.pageTime = pageTime});
        ASSERT_TRUE(reading);
        EXPECT_EQ(reading->abandonedPages, expected);
        ASSERT_EQ(reading->pageTexts.size(), std::size_t{slowPages + ordinaryPages});
        for (int i = 0; i < slowPages; ++i) {
            EXPECT_EQ(reading->pageTexts[static_cast<std::size_t>(i)].text, QString());
            EXPECT_FALSE(reading->pageTexts[static_cast<std::size_t>(i)].boundingBoxes);
        }
        for (int i = 0; i < ordinaryPages; ++i) {
            const PageText& page = reading->pageTexts[static_cast<std::size_t>(slowPages + i)];
            EXPECT_EQ(page.text.count(QStringLiteral("ordinary")), 100 * wordsPerLine) << i;
            EXPECT_TRUE(page.boundingBoxes && page.boundingBoxes->size() == 100U * wordsPerLine) << i;
        }
    }
}

TEST_F(ReadDocumentTest, GivesUpOnAPageWithMoreTextThanItKeeps)
{
    PDFWriter writer;
    const int words = writer.addStream(
        "BT /F1 1 Tf 10 10 Td " +
            QByteArray("(aaaaaaaaaaaaaaaaaaaa) Tj 10 10 Td -10 -10 Td ").repeated(1000) + " ET",
        "/Type/XObject/Subtype/Form/BBox[0 0 612 792]/Resources<</Font<</F1 3 0 R>>>>");
    writer.setResources("/XObject<</X " + QByteArray::number(words) + " 0 R>>");
    writer.addPage(QByteArray("/X Do ").repeated(200));
    addTextPages(writer, 1, "ordinary");
    const auto reading = read(m_folder.write(QStringLiteral("full.pdf"), writer.bytes()), {.pageTime = 1h});
    ASSERT_TRUE(reading);
    EXPECT_EQ(reading->abandonedPages, std::vector<std::int64_t>{0});
    ASSERT_EQ(reading->pageTexts.size(), 2U);
    EXPECT_EQ(reading->pageTexts[1].text, QStringLiteral("ordinary 0\n"));
}

TEST_F(ReadDocumentTest, TellsTheNumberOfPagesAndThenEachPage)
{
    const QString path = m_folder.write(QStringLiteral("a.pdf"), textPages(50, "text").bytes());
    std::atomic<int> pagesRead = 0;
    std::int64_t told = 0;
    const ReadingOptions options{
        .onPageCount =
            [&](std::int64_t pageCount) {
                EXPECT_EQ(pagesRead, 0);
                told += pageCount;
            },
        .onPageRead = [&] { ++pagesRead; }};
    EXPECT_TRUE(read(path, options));
    EXPECT_EQ(told, 50);
    EXPECT_EQ(pagesRead, 50);
}

TEST_F(ReadDocumentTest, LeavesTheBoxesOutWhereNobodyWantsThem)
{
    const QString path = m_folder.write(QStringLiteral("a.pdf"), textPages(1, "text").bytes());
    const auto reading = read(path, {.withBoxes = false});
    ASSERT_TRUE(reading);
    EXPECT_EQ(reading->pageTexts.at(0).text, QStringLiteral("text 0\n"));
    EXPECT_FALSE(reading->pageTexts[0].boundingBoxes);
}

// Enough pages for all threads to take part.
constexpr int manyPages = 1000;

TEST_F(ReadDocumentTest, ReadsOneDocumentWhenItsFileIsReplacedMeanwhile)
{
    const QString path = m_folder.write(QStringLiteral("a.pdf"), textPages(manyPages, "first").bytes());
    const auto replace = [&](std::int64_t) {
        const QString other = m_folder.write(QStringLiteral("b.pdf"), textPages(manyPages, "second").bytes());
        ASSERT_TRUE(QFile::remove(path));
        ASSERT_TRUE(QFile::rename(other, path));
    };
    const auto reading = read(path, {.onPageCount = replace});
    ASSERT_TRUE(reading);
    ASSERT_EQ(reading->pageTexts.size(), std::size_t{manyPages});
    for (int i = 0; i < manyPages; ++i)
        ASSERT_EQ(reading->pageTexts[static_cast<std::size_t>(i)].text, QStringLiteral("first %1\n").arg(i));
}

TEST_F(ReadDocumentTest, RefusesADocumentThatIsOverwrittenMeanwhile)
{
    const QString path = m_folder.write(QStringLiteral("a.pdf"), textPages(manyPages, "first").bytes());
    const auto overwrite = [&](std::int64_t) {
        m_folder.write(QStringLiteral("a.pdf"), textPages(manyPages, "another").bytes());
    };
    const auto reading = read(path, {.onPageCount = overwrite});
    ASSERT_FALSE(reading);
    EXPECT_EQ(reading.error().code, Code::changedMeanwhile);
}

TEST_F(ReadDocumentTest, SaysWhyALockedFileCannotBeRead)
{
    const QString plain = m_folder.write(QStringLiteral("plain.pdf"), textPages(1, "secret").bytes());
    const QString encrypted = m_folder.path(QStringLiteral("encrypted.pdf"));
    ASSERT_EQ(
        runTool(
            QStringLiteral("qpdf"),
            {QStringLiteral("--encrypt"), QStringLiteral("key"), QStringLiteral("owner"),
             QStringLiteral("256"), QStringLiteral("--"), plain, encrypted})
            .value_or(ToolResult())
            .exitCode,
        0);

    const auto missing = PDFTextExtractor::readDocument(encrypted, std::nullopt, {});
    ASSERT_FALSE(missing);
    EXPECT_EQ(missing.error().message, QStringLiteral("a password is required"));
    const auto wrong = PDFTextExtractor::readDocument(encrypted, QStringLiteral("wrong"), {});
    ASSERT_FALSE(wrong);
    EXPECT_EQ(wrong.error().message, QStringLiteral("the password is wrong"));
    EXPECT_TRUE(PDFTextExtractor::readDocument(encrypted, QStringLiteral("key"), {}));
}

TEST_F(ReadDocumentTest, ACancelledReadingSaysSo)
{
    const QString path = m_folder.write(QStringLiteral("a.pdf"), textPages(1, "text").bytes());
    const pdf::Cancellation cancellation;
    const auto reading = PDFTextExtractor::readDocument(
        path, std::nullopt, cancellation, {.onPageCount = [&](std::int64_t) { cancellation.cancel(); }});
    ASSERT_FALSE(reading);
    EXPECT_EQ(reading.error().code, Code::cancelled);
}

TEST_F(ReadDocumentTest, LeavesOutWordBoxesBeyondTheirShareOfMemoryAndNoText)
{
    const QString path = m_folder.write(QStringLiteral("words.pdf"), textPages(40, "a few words").bytes());
    const auto whole = read(path, {});
    ASSERT_TRUE(whole);
    const auto bounded = read(path, {.boxMemory = 1000});
    ASSERT_TRUE(bounded);
    ASSERT_EQ(bounded->pageTexts.size(), 40U);
    std::size_t withBoxes = 0;
    for (std::size_t i = 0; i < 40; ++i) {
        EXPECT_EQ(bounded->pageTexts[i].text, whole->pageTexts[i].text);
        ASSERT_TRUE(bounded->pageTexts[i].boundingBoxes) << "a page with text has boxes, if none";
        EXPECT_EQ(whole->pageTexts[i].boundingBoxes->size(), 4U);
        withBoxes += bounded->pageTexts[i].boundingBoxes->empty() ? 0 : 1;
    }
    EXPECT_GT(withBoxes, 0U);
    EXPECT_LT(withBoxes, 10U);
    EXPECT_TRUE(bounded->abandonedPages.empty());
}

TEST_F(ReadDocumentTest, RefusesADocumentWhoseTextsTakeTooMuchMemory)
{
    const QString path = m_folder.write(QStringLiteral("words.pdf"), textPages(40, "a few words").bytes());
    // Each page has fifteen characters or sixteen.
    EXPECT_TRUE(read(path, {.textMemory = 40 * 16 * 2}));
    const auto refused = read(path, {.textMemory = 20 * 16 * 2});
    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.error().code, Code::limitExceeded);
}

} // namespace
} // namespace quillo
