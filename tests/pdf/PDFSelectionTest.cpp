// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/PDFDocument.h"
#include "pdf/PDFPage.h"
#include "pdf/TextLayer.h"
#include "support/PDFWriter.h"
#include "support/Printing.h"

#include <gtest/gtest.h>

#include <QLineF>

namespace pdf {
namespace {

std::shared_ptr<PDFDocument> documentOf(const PDFWriter& writer)
{
    const TestFolder folder;
    auto document = PDFDocument::open(folder.write(QStringLiteral("text.pdf"), writer.bytes()));
    return document ? *std::move(document) : nullptr;
}

std::shared_ptr<PDFPage> pageShowing(const QByteArray& content, const QByteArray& entries = {})
{
    PDFWriter writer;
    writer.addPage(content, entries);
    return documentOf(writer)->page(0);
}

QString selected(const std::optional<PDFSelection>& selection)
{
    return selection ? selection->string() : QStringLiteral("(nothing)");
}

// In Helvetica of 12 points "Hello " is 30.67 points wide and "world" 28.67.
const QByteArray twoLines = showText(72, 700, "Hello world") + showText(72, 680, "Second line");

TEST(PDFSelectionTest, FindsTheCharacterAtAPoint)
{
    const auto page = pageShowing(twoLines);
    EXPECT_EQ(page->characterIndex({73, 703}), 0);
    EXPECT_EQ(page->characterIndex({104, 703}), 6);
    EXPECT_EQ(page->characterIndex({73, 683}), 12);
}

TEST(PDFSelectionTest, FindsNoCharacterBesideTheText)
{
    const auto page = pageShowing(twoLines);
    EXPECT_EQ(page->characterIndex({70, 703}), -1);
    EXPECT_EQ(page->characterIndex({300, 703}), -1);
    EXPECT_EQ(page->characterIndex({73, 720}), -1);
    EXPECT_EQ(pageShowing("0 0 9 9 re f")->characterIndex({73, 703}), -1);
}

TEST(PDFSelectionTest, SelectsBetweenTwoPointsOfALine)
{
    const auto page = pageShowing(twoLines);
    EXPECT_EQ(selected(page->selection(QPointF(103, 704), QPointF(132, 701))), QStringLiteral("world"));
    EXPECT_EQ(selected(page->selection(QPointF(132, 701), QPointF(103, 704))), QStringLiteral("world"));
}

TEST(PDFSelectionTest, PutsThePlaceBeforeOrAfterTheNearerHalfOfACharacter)
{
    const auto text = pageShowing(showText(72, 700, "HH"))->text();
    // An H is 8.67 points wide.
    EXPECT_EQ(text->insertionIndex({75, 703}), 0);
    EXPECT_EQ(text->insertionIndex({78, 703}), 1);
    EXPECT_EQ(text->insertionIndex({84, 703}), 1);
    EXPECT_EQ(text->insertionIndex({86, 703}), 2);
}

TEST(PDFSelectionTest, TakesTheNearestLineForAPointBesideTheText)
{
    const auto text = pageShowing(twoLines)->text();
    EXPECT_EQ(text->insertionIndex({10, 702}), 0);
    EXPECT_EQ(text->insertionIndex({500, 702}), 11);
    EXPECT_EQ(text->insertionIndex({10, 10}), 12);
    EXPECT_EQ(text->insertionIndex({500, 10}), 23);
}

TEST(PDFSelectionTest, FindsThePlaceInALineThatIsNotTheNearest)
{
    const auto text = pageShowing(twoLines)->text();
    EXPECT_EQ(text->insertionIndex({10, 702}, 15), 12);
    EXPECT_EQ(text->insertionIndex({500, 702}, 12), 23);
    EXPECT_EQ(text->insertionIndex({103, 10}, 11), 6) << "a line feed belongs to the line before it";
}

TEST(PDFSelectionTest, SelectsOverALineBreak)
{
    const auto page = pageShowing(twoLines);
    EXPECT_EQ(
        selected(page->selection(QPointF(103, 703), QPointF(112, 683))), QStringLiteral("world\nSecond"));
}

TEST(PDFSelectionTest, SelectsTheWordAtAPoint)
{
    const auto page = pageShowing(showText(72, 700, "Hello wide-eyed, (world)"));
    EXPECT_EQ(selected(page->selectionForWord({80, 703})), QStringLiteral("Hello"));
    EXPECT_EQ(selected(page->selectionForWord({110, 703})), QStringLiteral("wide"));
    EXPECT_EQ(selected(page->selectionForWord({500, 703})), QStringLiteral("(nothing)"));
}

TEST(PDFSelectionTest, SelectsARunOfSpacesAsAWord)
{
    const auto page = pageShowing(showText(72, 700, "one   two"));
    const auto text = page->text();
    EXPECT_EQ(text->wordRange(4), (TextRange{3, 3}));
    EXPECT_EQ(text->wordRange(7), (TextRange{6, 3}));
    EXPECT_EQ(text->wordRange(0), (TextRange{0, 3}));
}

TEST(PDFSelectionTest, SelectsTheLineAtAPoint)
{
    const auto page = pageShowing(twoLines);
    EXPECT_EQ(selected(page->selectionForLine({110, 683})), QStringLiteral("Second line"));
    EXPECT_EQ(selected(page->selectionForLine({110, 650})), QStringLiteral("(nothing)"));
}

TEST(PDFSelectionTest, GivesEachTouchedLineItsBounds)
{
    const auto page = pageShowing(twoLines);
    const auto selection = page->selection(TextRange{6, 12});
    ASSERT_TRUE(selection);
    EXPECT_EQ(selection->string(), QStringLiteral("world\nSecond"));
    const auto lines = selection->lineBounds(*page);
    ASSERT_EQ(lines.size(), 2U);
    EXPECT_NEAR(lines[0].left(), 102.67, 0.01);
    EXPECT_NEAR(lines[0].width(), 28.67, 0.01);
    EXPECT_NEAR(lines[1].left(), 72, 0.01);
    EXPECT_LT(lines[1].bottom(), lines[0].top());
}

TEST(PDFSelectionTest, OutlinesALineAsHighAsItsHighestLetter)
{
    const auto page = pageShowing("BT /F1 24 Tf 72 700 Td (Big) Tj /F1 8 Tf ( and small) Tj ET");
    const auto text = page->text();
    const auto outlines = text->outlines({5, 3});
    ASSERT_EQ(outlines.size(), 1U);
    EXPECT_GT(outlines[0].boundingRect().height(), 20);
}

TEST(PDFSelectionTest, OutlinesSlantedTextAlongItsLine)
{
    const auto page = pageShowing("BT /F1 20 Tf 0.8 0.6 -0.6 0.8 200 300 Tm (Slanted) Tj ET");
    const auto text = page->text();
    ASSERT_EQ(text->string(), QStringLiteral("Slanted\n"));
    const auto outlines = text->outlines({0, 7});
    ASSERT_EQ(outlines.size(), 1U);
    const QLineF foot(outlines[0][0], outlines[0][1]);
    EXPECT_NEAR(foot.dy() / foot.dx(), 0.75, 0.001);
    EXPECT_EQ(text->characterIndex({200 + 8 - 3, 300 + 6 + 4}), 0);
    EXPECT_EQ(text->insertionIndex(outlines[0][1]), 7);
}

TEST(PDFSelectionTest, HitsTheSamePointsOfPageSpaceOnRotatedPages)
{
    for (const QByteArray rotation : {"90", "180", "270"}) {
        const auto page = pageShowing(twoLines, "/Rotate " + rotation);
        EXPECT_EQ(page->characterIndex({104, 703}), 6) << rotation.toStdString();
        EXPECT_EQ(selected(page->selection(QPointF(103, 704), QPointF(132, 701))), QStringLiteral("world"));
        const auto outlines = page->text()->outlines({6, 5});
        ASSERT_EQ(outlines.size(), 1U);
        EXPECT_NEAR(outlines[0].boundingRect().left(), 102.67, 0.02) << rotation.toStdString();
        EXPECT_NEAR(outlines[0].boundingRect().width(), 28.67, 0.02) << rotation.toStdString();
    }
}

TEST(PDFSelectionTest, ReadsTextThatIsTurnedOnThePage)
{
    // The page is scanned sideways: its text runs upwards and /Rotate puts it right.
    const auto page = pageShowing("BT /F1 12 Tf 0 1 -1 0 300 100 Tm (Hello world) Tj ET", "/Rotate 90");
    EXPECT_EQ(page->characterIndex({297, 132}), 6);
    EXPECT_EQ(selected(page->selectionForWord({297, 140})), QStringLiteral("world"));
}

TEST(PDFSelectionTest, SelectsAcrossPages)
{
    PDFWriter writer;
    writer.addPage(showText(72, 700, "First page"));
    writer.addPage(showText(72, 700, "Second page"));
    writer.addPage("0 0 9 9 re f");
    writer.addPage(showText(72, 700, "Last page"));
    const auto document = documentOf(writer);
    const auto selection = document->selection({0, 6}, {3, 4});
    ASSERT_TRUE(selection);
    EXPECT_EQ(selection->string(), QStringLiteral("page\nSecond page\nLast"));
    const auto pages = selection->pages();
    ASSERT_EQ(pages.size(), 3U);
    EXPECT_EQ(pages[2]->index(), 3);
    EXPECT_NEAR(selection->bounds(*pages[0]).left(), 98.66, 0.01);
    EXPECT_NEAR(selection->bounds(*pages[1]).left(), 72, 0.01);
    EXPECT_EQ(selection->lineBounds(*document->page(2)).size(), 0U);
    EXPECT_EQ(document->selection({3, 4}, {0, 6}), selection) << "the order of the ends does not matter";
}

TEST(PDFSelectionTest, IsAbsentWhereNothingIsSelected)
{
    const auto page = pageShowing(twoLines);
    const auto document = page->document();
    EXPECT_FALSE(document->selection({0, 5}, {0, 5}));
    EXPECT_FALSE(document->selection({0, 24}, {7, 100}));
    EXPECT_FALSE(page->selection(QPointF(10, 10), QPointF(10, 11)));
}

TEST(PDFSelectionTest, CutsPlacesOutsideTheDocumentToIt)
{
    const auto page = pageShowing(twoLines);
    EXPECT_EQ(
        selected(page->document()->selection({-3, 5}, {100000, 5})),
        QStringLiteral("Hello world\nSecond line\n"));
}

} // namespace
} // namespace pdf
