// SPDX-License-Identifier: AGPL-3.0-or-later
#include "document/PDFTextExtractor.h"

#include "document/DocumentPasswords.h"
#include "pdf/PDFDocument.h"
#include "pdf/PDFPage.h"
#include "support/PDFWriter.h"
#include "support/Printing.h"
#include "support/ToolRun.h"

#include <gtest/gtest.h>

#include <QSignalSpy>
#include <QTest>

#include <memory>
#include <string>
#include <vector>

namespace quillo {
namespace {

using Field = DocumentState::Field;

PDFWriter pages(const std::vector<QByteArray>& contents)
{
    PDFWriter writer;
    for (const QByteArray& content : contents)
        writer.addPage(content);
    return writer;
}

class PDFTextExtractorTest : public testing::Test
{
protected:
    QUrl writeFile(const QByteArray& bytes)
    {
        return QUrl::fromLocalFile(m_folder.write(QStringLiteral("document.pdf"), bytes));
    }

    /// Runs the extractor to its end and gives what it printed.
    std::string extract(const QUrl& url)
    {
        testing::internal::CaptureStdout();
        const QFuture<void> future = m_extractor.extractText(url, &m_state);
        EXPECT_TRUE(QTest::qWaitFor([&] { return future.isFinished(); }, 10000));
        return testing::internal::GetCapturedStdout();
    }

    const PageText& page(std::size_t index)
    {
        m_taken = m_state.pageTexts();
        return m_taken->at(index);
    }

    TestFolder m_folder;
    DocumentState m_state;
    PDFTextExtractor m_extractor;

private:
    std::shared_ptr<const PageTexts> m_taken;
};

TEST_F(PDFTextExtractorTest, ReadsThePagesInOrder)
{
    std::vector<QByteArray> contents(50);
    for (int i = 0; i < 50; ++i)
        contents[static_cast<std::size_t>(i)] = showText(72, 700, "page " + QByteArray::number(i));
    extract(writeFile(pages(contents).bytes()));

    ASSERT_EQ(m_state.totalPages(), 50);
    ASSERT_EQ(m_state.pageTexts()->size(), 50U);
    for (int i = 0; i < 50; ++i) {
        EXPECT_EQ(page(static_cast<std::size_t>(i)).pageNumber, i);
        EXPECT_EQ(page(static_cast<std::size_t>(i)).text, QStringLiteral("page %1\n").arg(i));
        EXPECT_FALSE(page(static_cast<std::size_t>(i)).isOCR);
    }
}

TEST_F(PDFTextExtractorTest, TellsThePageCountBeforeThePageTexts)
{
    std::vector<Field> changes;
    QObject::connect(&m_state, &DocumentState::willChange, [&](Field field) { changes.push_back(field); });
    extract(writeFile(pages({showText(72, 700, "text")}).bytes()));

    EXPECT_EQ(changes, (std::vector{Field::totalPages, Field::pageTexts}));
}

TEST_F(PDFTextExtractorTest, ADocumentWithoutPagesHasNoTexts)
{
    m_state.setTotalPages(7);
    m_state.setPageTexts({PageText(0, QStringLiteral("old"), false, std::nullopt)});
    extract(writeFile(PDFWriter().bytes()));

    EXPECT_EQ(m_state.totalPages(), 0);
    EXPECT_TRUE(m_state.pageTexts()->empty());
}

TEST_F(PDFTextExtractorTest, APageWithoutTextIsEmptyAndHasNoBoxes)
{
    extract(writeFile(pages({"0 0 100 100 re f"}).bytes()));

    EXPECT_EQ(page(0).text, QString());
    EXPECT_FALSE(page(0).boundingBoxes);
}

TEST_F(PDFTextExtractorTest, APageOfWhiteSpaceIsEmptyAndHasNoBoxes)
{
    extract(writeFile(pages({showText(72, 700, "   ") + showText(72, 600, " ")}).bytes()));

    EXPECT_EQ(page(0).text, QString());
    EXPECT_FALSE(page(0).boundingBoxes);
}

TEST_F(PDFTextExtractorTest, KeepsTheWhiteSpaceAroundTheText)
{
    extract(writeFile(pages({showText(72, 700, "  Hello world  ")}).bytes()));

    EXPECT_TRUE(page(0).text.startsWith(QLatin1String("  Hello world")));
    EXPECT_TRUE(page(0).text.endsWith(QLatin1Char('\n')));
}

TEST_F(PDFTextExtractorTest, EveryBoxCoversTheFirstCharactersOfThePage)
{
    const QUrl url = writeFile(pages({showText(72, 700, "  Hello world of ice")}).bytes());
    extract(url);

    const auto document = pdf::PDFDocument::open(url.toLocalFile());
    ASSERT_TRUE(document);
    const auto pdfPage = (*document)->page(0);
    const auto boundsOf = [&](qsizetype length) { return pdfPage->selection({0, length})->bounds(*pdfPage); };

    const auto& boxes = page(0).boundingBoxes;
    ASSERT_TRUE(boxes);
    ASSERT_EQ(boxes->size(), 4U);
    EXPECT_EQ(boxes->at(0).text, QStringLiteral("Hello"));
    EXPECT_EQ(boxes->at(0).rect, boundsOf(5));
    EXPECT_EQ(boxes->at(1).text, QStringLiteral("world"));
    EXPECT_EQ(boxes->at(1).rect, boundsOf(5));
    EXPECT_EQ(boxes->at(2).text, QStringLiteral("of"));
    EXPECT_EQ(boxes->at(2).rect, boundsOf(2));
    EXPECT_EQ(boxes->at(3).text, QStringLiteral("ice"));
    EXPECT_EQ(boxes->at(3).rect, boundsOf(3));
}

TEST_F(PDFTextExtractorTest, AFileThatIsNoPDFLeavesTheStateAndOneLine)
{
    m_state.setTotalPages(7);
    m_state.setPageTexts({PageText(0, QStringLiteral("old"), false, std::nullopt)});

    EXPECT_EQ(extract(writeFile("no PDF at all")), "Failed to load PDF document\n");
    EXPECT_EQ(m_state.totalPages(), 7);
    EXPECT_EQ(page(0).text, QStringLiteral("old"));
}

TEST_F(PDFTextExtractorTest, AMissingFileLeavesTheStateAndOneLine)
{
    m_state.setTotalPages(7);

    EXPECT_EQ(
        extract(QUrl::fromLocalFile(m_folder.path(QStringLiteral("none.pdf")))),
        "Failed to load PDF document\n");
    EXPECT_EQ(m_state.totalPages(), 7);
}

TEST_F(PDFTextExtractorTest, LeavesTheFlagOfRecognisedTextAlone)
{
    m_state.setHasOCRData(true);
    extract(writeFile(pages({showText(72, 700, "text")}).bytes()));
    EXPECT_TRUE(m_state.hasOCRData());
}

TEST_F(PDFTextExtractorTest, APageThatCannotBeFetchedIsLeftOut)
{
    PDFWriter writer =
        pages({showText(72, 700, "first"), showText(72, 700, "second"), showText(72, 700, "third")});
    // The font is object 3; each page is preceded by its content stream.
    const int secondPage = 7;
    writer.replace(secondPage, "null");
    extract(writeFile(writer.bytes()));

    EXPECT_EQ(m_state.totalPages(), 3);
    ASSERT_EQ(m_state.pageTexts()->size(), 2U);
    EXPECT_EQ(page(0).pageNumber, 0);
    EXPECT_EQ(page(1).pageNumber, 2);
    EXPECT_EQ(page(1).text, QStringLiteral("third\n"));
}

TEST_F(PDFTextExtractorTest, ReadsAnEncryptedFileWithThePasswordThatTheUserGave)
{
    const QString plain =
        m_folder.write(QStringLiteral("plain.pdf"), pages({showText(72, 700, "secret")}).bytes());
    const QString encrypted = m_folder.path(QStringLiteral("encrypted.pdf"));
    ASSERT_EQ(
        runTool(
            QStringLiteral("qpdf"),
            {QStringLiteral("--encrypt"), QStringLiteral("key"), QStringLiteral("owner"),
             QStringLiteral("256"), QStringLiteral("--"), plain, encrypted})
            .value_or(ToolResult())
            .exitCode,
        0);
    const QUrl url = QUrl::fromLocalFile(encrypted);

    EXPECT_EQ(extract(url), "Failed to load PDF document\n");
    DocumentPasswords::shared().remember(encrypted, QStringLiteral("key"));
    EXPECT_EQ(extract(url), "");
    ASSERT_EQ(m_state.pageTexts()->size(), 1U);
    EXPECT_EQ(page(0).text, QStringLiteral("secret\n"));
}

TEST(PDFTextExtractorGetAllTextTest, JoinsThePagesWithTwoLineFeeds)
{
    const auto textOf = [](const std::vector<QString>& texts) {
        PageTexts pageTexts;
        for (const QString& text : texts)
            pageTexts.emplace_back(0, text, false, std::nullopt);
        return PDFTextExtractor::getAllText(pageTexts);
    };
    EXPECT_EQ(textOf({}), QString());
    EXPECT_EQ(textOf({QStringLiteral(" one\n")}), QStringLiteral(" one\n"));
    EXPECT_EQ(textOf({QStringLiteral("A"), QString(), QStringLiteral("B")}), QStringLiteral("A\n\n\n\nB"));
}

} // namespace
} // namespace quillo
