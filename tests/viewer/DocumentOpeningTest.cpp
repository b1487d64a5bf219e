// SPDX-License-Identifier: AGPL-3.0-or-later
#include "viewer/DocumentOpening.h"

#include "pdf/PDFDocument.h"
#include "pdfview/RenderThreads.h"
#include "viewer/ViewerFixture.h"

#include <gtest/gtest.h>

#include <QTest>

namespace quillo {
namespace {

class DocumentOpeningTest : public ViewerFixture
{
protected:
    static pdf::Result<pdf::ShownDocument> finish(const DocumentOpening& opening)
    {
        EXPECT_TRUE(QTest::qWaitFor([&] { return opening.result.isFinished(); }, 10000));
        return opening.result.result();
    }
};

TEST_F(DocumentOpeningTest, BringsTheFirstPagesPictureAtTheExpectedScale)
{
    const auto opened = finish(DocumentOpening::begin(documentOf(3).toLocalFile(), 1.5));
    ASSERT_TRUE(opened);
    EXPECT_EQ(opened->pageCount, 3);
    ASSERT_TRUE(pdf::RenderThreads::shared().waitUntilIdle(std::chrono::seconds(60)));
    std::vector<pdf::Tile> tiles;
    for (const auto& result : opened->renderer->takeResults()) {
        if (const auto* drawn = std::get_if<pdf::TileRenderer::TileDrawn>(&result))
            tiles.push_back(drawn->tile);
    }
    ASSERT_EQ(tiles.size(), 4U) << "two rows of two cells";
    for (const pdf::Tile& tile : tiles) {
        EXPECT_EQ(tile.page, 0);
        EXPECT_EQ(tile.scale, 1.5);
    }
}

TEST_F(DocumentOpeningTest, TakesUpWhatWasBegunEarly)
{
    const QString path = documentOf(3).toLocalFile();
    DocumentOpening::beginEarly(path, 1.0);
    const auto first = finish(DocumentOpening::begin(path, 1.0));
    const auto second = finish(DocumentOpening::begin(path, 1.0));
    ASSERT_TRUE(first);
    ASSERT_TRUE(second);
    EXPECT_NE(first->document, second->document) << "an early opening serves once";
}

TEST_F(DocumentOpeningTest, DropsWhatWasBegunEarlyForAnotherFile)
{
    DocumentOpening::beginEarly(documentOf(3).toLocalFile(), 1.0);
    const auto opened =
        finish(DocumentOpening::begin(documentOf(5, QStringLiteral("other.pdf")).toLocalFile(), 1.0));
    ASSERT_TRUE(opened);
    EXPECT_EQ(opened->pageCount, 5);
}

TEST_F(DocumentOpeningTest, SaysThatAPasswordIsRequired)
{
    const QString path =
        encryptedDocument(QStringLiteral("key"), QStringLiteral("opening.pdf")).toLocalFile();
    EXPECT_EQ(finish(DocumentOpening::begin(path, 1.0)).error().code, pdf::PDFError::Code::passwordRequired);
    EXPECT_EQ(
        finish(DocumentOpening::begin(path, 1.0, QStringLiteral("wrong"))).error().code,
        pdf::PDFError::Code::passwordRequired);
    EXPECT_TRUE(finish(DocumentOpening::begin(path, 1.0, QStringLiteral("key"))));
}

} // namespace
} // namespace quillo
