// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/PDFDocument.h"
#include "pdf/PDFPage.h"
#include "support/PDFWriter.h"
#include "support/Printing.h"

#include <gtest/gtest.h>

namespace pdf {
namespace {

std::shared_ptr<PDFPage> firstPage(const PDFWriter& writer)
{
    const TestFolder folder;
    const auto document = PDFDocument::open(folder.write(QStringLiteral("text.pdf"), writer.bytes()));
    return document ? (*document)->page(0) : nullptr;
}

std::shared_ptr<PDFPage> pageShowing(const QByteArray& content, const QByteArray& entries = {})
{
    PDFWriter writer;
    writer.addPage(content, entries);
    return firstPage(writer);
}

/// Adds /F2, Helvetica whose codes mean other characters; `map` is like "<41> <05D0>".
void addMappedFont(PDFWriter& writer, const QByteArray& map)
{
    const int unicode = writer.addStream(
        "/CIDInit /ProcSet findresource begin begincmap 1 begincodespacerange <00> <FF> endcodespacerange " +
        QByteArray::number(map.count('<') / 2) + " beginbfchar " + map + " endbfchar endcmap");
    const int font = writer.add(
        "<</Type/Font/Subtype/Type1/BaseFont/Helvetica/ToUnicode " + QByteArray::number(unicode) + " 0 R>>");
    writer.setFonts("/F2 " + QByteArray::number(font) + " 0 R");
}

std::shared_ptr<PDFPage> pageWithMap(const QByteArray& map, const QByteArray& content)
{
    PDFWriter writer;
    addMappedFont(writer, map);
    writer.addPage(content);
    return firstPage(writer);
}

void expectNear(const QRectF& actual, const QRectF& expected)
{
    EXPECT_NEAR(actual.left(), expected.left(), 0.01);
    EXPECT_NEAR(actual.right(), expected.right(), 0.01);
    EXPECT_NEAR(actual.top(), expected.top(), 0.01);
    EXPECT_NEAR(actual.bottom(), expected.bottom(), 0.01);
}

QRectF boundsOf(PDFPage& page, TextRange range)
{
    const auto selection = page.selection(range);
    return selection ? selection->bounds(page) : QRectF();
}

TEST(PDFPageTextTest, EndsEachLineWithALineFeed)
{
    const auto page = pageShowing(showText(72, 700, "Hello world") + showText(72, 680, "Second line"));
    EXPECT_EQ(page->string(), QStringLiteral("Hello world\nSecond line\n"));
}

TEST(PDFPageTextTest, IsAbsentWithoutText)
{
    EXPECT_EQ(pageShowing("0 0 100 100 re f")->string(), std::nullopt);
}

TEST(PDFPageTextTest, KeepsSpacesAsThePageHasThem)
{
    EXPECT_EQ(pageShowing(showText(72, 700, "  Hello world "))->string(), QStringLiteral("  Hello world \n"));
}

TEST(PDFPageTextTest, ReadsAGapAsASpace)
{
    const auto page = pageShowing("BT /F1 12 Tf 72 700 Td [(Hello) -400 (world)] TJ ET");
    EXPECT_EQ(page->string(), QStringLiteral("Hello world\n"));
}

TEST(PDFPageTextTest, ReadsKerningAsNothing)
{
    const auto page = pageShowing("BT /F1 12 Tf 72 700 Td [(A) 120 (W) 120 (A) 95 (Y) -20 (s)] TJ ET");
    EXPECT_EQ(page->string(), QStringLiteral("AWAYs\n"));
}

TEST(PDFPageTextTest, KeepsTheCellsOfARowOnOneLine)
{
    const auto page = pageShowing(showText(72, 700, "Total:") + showText(400, 700, "5.00"));
    EXPECT_EQ(page->string(), QStringLiteral("Total: 5.00\n"));
}

TEST(PDFPageTextTest, KeepsASuperscriptOnItsLine)
{
    const auto page = pageShowing("BT /F1 12 Tf 72 700 Td (E = mc) Tj /F1 7 Tf 5 Ts (2) Tj ET");
    EXPECT_EQ(page->string(), QStringLiteral("E = mc2\n"));
}

TEST(PDFPageTextTest, LeavesHyphensAsTheyStand)
{
    const auto page = pageWithMap(
        "<41> <00AD>", "BT /F2 12 Tf 72 700 Td (hyphen-) Tj 0 -14 Td (ation softA) Tj 0 -14 Td (ly) Tj ET");
    EXPECT_EQ(page->string(), QStringLiteral("hyphen-\nation soft\u00AD\nly\n"));
}

TEST(PDFPageTextTest, TakesALineThatIsPrintedTwiceOnce)
{
    const auto page = pageShowing(showText(72, 700, "Bold") + showText(72.4, 700, "Bold"));
    EXPECT_EQ(page->string(), QStringLiteral("Bold\n"));
}

TEST(PDFPageTextTest, TakesALetterThatIsPrintedTwiceOnce)
{
    const auto page = pageShowing("BT /F1 12 Tf 72 700 Td (A) Tj 0.3 0 Td (A) Tj 8 0 Td (A) Tj ET");
    EXPECT_EQ(page->string(), QStringLiteral("AA\n"));
}

TEST(PDFPageTextTest, ReadsFormsAndAnnotations)
{
    PDFWriter writer;
    const int font = writer.add("<</Type/Font/Subtype/Type1/BaseFont/Helvetica>>");
    const QByteArray resources = "/Resources<</Font<</F1 " + QByteArray::number(font) + " 0 R>>>>";
    const int form = writer.addStream(
        showText(72, 700, "In a form"), "/Type/XObject/Subtype/Form/BBox[0 0 612 792]" + resources);
    const int appearance = writer.addStream(
        showText(10, 10, "In a note"), "/Type/XObject/Subtype/Form/BBox[0 0 100 100]" + resources);
    writer.setResources("/XObject<</X " + QByteArray::number(form) + " 0 R>>");
    writer.addPage(
        "/X Do", "/Annots[<</Type/Annot/Subtype/Stamp/Rect[72 400 172 500]/AP<</N " +
                     QByteArray::number(appearance) + " 0 R>>>>]");
    EXPECT_EQ(firstPage(writer)->string(), QStringLiteral("In a form\nIn a note\n"));
}

TEST(PDFPageTextTest, ReadsTheInvisibleTextOverAScan)
{
    EXPECT_EQ(
        pageShowing("BT 3 Tr /F1 12 Tf 72 700 Td (Recognised) Tj ET")->string(),
        QStringLiteral("Recognised\n"));
}

TEST(PDFPageTextTest, LeavesOutWhatIsOutsideTheVisiblePart)
{
    const auto page =
        pageShowing(showText(72, 700, "Inside") + showText(72, 50, "Outside"), "/CropBox[0 100 612 792]");
    EXPECT_EQ(page->string(), QStringLiteral("Inside\n"));
}

TEST(PDFPageTextTest, LeavesOutLayersThatAreSwitchedOff)
{
    PDFWriter writer;
    const int layer = writer.add("<</Type/OCG/Name(Draft)>>");
    const QByteArray reference = QByteArray::number(layer) + " 0 R";
    writer.setCatalog("/OCProperties<</OCGs[" + reference + "]/D<</OFF[" + reference + "]>>>>");
    writer.setResources("/Properties<</P " + reference + ">>");
    writer.addPage("/OC /P BDC " + showText(72, 700, "Draft") + "EMC " + showText(72, 680, "Final"));
    EXPECT_EQ(firstPage(writer)->string(), QStringLiteral("Final\n"));
}

TEST(PDFPageTextTest, KeepsTheTextBeforeDamage)
{
    PDFWriter writer;
    writer.setResources("/XObject<</X<</Type/XObject/Subtype/Image/Width 0/Height 0>>>>");
    writer.addPage(showText(72, 700, "Sound") + "/X Do /Missing Do " + showText(72, 680, "still"));
    const auto text = firstPage(writer)->string();
    ASSERT_TRUE(text);
    EXPECT_TRUE(text->startsWith(QStringLiteral("Sound\n"))) << text->toStdString();
}

// Order

TEST(PDFPageTextTest, ReadsAFooterThatIsDrawnFirstLast)
{
    const auto page =
        pageShowing(showText(72, 40, "Page 1") + showText(72, 700, "Title") + showText(72, 680, "Body"));
    EXPECT_EQ(page->string(), QStringLiteral("Title\nBody\nPage 1\n"));
}

TEST(PDFPageTextTest, ReadsLinesFromTopToBottomInWhateverOrderTheyAreDrawn)
{
    const auto page = pageShowing(
        showText(72, 660, "three") + showText(72, 700, "one") + showText(72, 640, "four") +
        showText(72, 680, "two"));
    EXPECT_EQ(page->string(), QStringLiteral("one\ntwo\nthree\nfour\n"));
}

TEST(PDFPageTextTest, ReadsOneColumnAfterTheOther)
{
    const auto page = pageShowing(
        showText(72, 600, "Left one") + showText(72, 580, "left two") + showText(330, 600, "Right one") +
        showText(330, 580, "right two") +
        showText(72, 640, "A heading that reaches over both of the columns below"));
    EXPECT_EQ(
        page->string(),
        QStringLiteral("A heading that reaches over both of the columns below\nLeft one\nleft two\n"
                       "Right one\nright two\n"));
}

TEST(PDFPageTextTest, MovesNoColumnForAHeadingOfTheOtherThatIsDrawnLast)
{
    const auto page = pageShowing(
        showText(72, 600, "Left one") + showText(72, 580, "left two") + showText(330, 600, "Right one") +
        showText(330, 580, "right two") + showText(72, 640, "Heading"));
    EXPECT_EQ(page->string(), QStringLiteral("Heading\nLeft one\nleft two\nRight one\nright two\n"));
}

TEST(PDFPageTextTest, OrdersTheLinesOfAPageThatIsShownTurned)
{
    // Written so that it stands upright once the page is turned.
    const auto page = pageShowing(
        "BT /F1 12 Tf 0 1 -1 0 120 100 Tm (second) Tj ET BT /F1 12 Tf 0 1 -1 0 100 100 Tm (first) Tj ET",
        "/MediaBox[0 0 300 400]/Rotate 90");
    EXPECT_EQ(page->string(), QStringLiteral("first\nsecond\n"));
}

// Boxes

TEST(PDFPageTextTest, SelectsARangeOfItsCharacters)
{
    const auto page = pageShowing(showText(72, 700, "Hello world"));
    const auto selection = page->selection({6, 5});
    ASSERT_TRUE(selection);
    EXPECT_EQ(selection->string(), QStringLiteral("world"));
    const QRectF bounds = selection->bounds(*page);
    // In Helvetica of 12 points, "Hello " is 30.672 points wide and "world" 28.668.
    EXPECT_NEAR(bounds.left(), 102.67, 0.01);
    EXPECT_NEAR(bounds.width(), 28.67, 0.01);
    EXPECT_LT(bounds.top(), 700);
    EXPECT_GT(bounds.bottom(), 708);
}

TEST(PDFPageTextTest, CutsARangeToTheText)
{
    const auto page = pageShowing(showText(72, 700, "Hello"));
    EXPECT_EQ(page->selection({3, 100})->string(), QStringLiteral("lo\n"));
    EXPECT_EQ(page->selection({-3, 100})->string(), QStringLiteral("Hello\n"));
    EXPECT_FALSE(page->selection({6, 1}));
    EXPECT_FALSE(page->selection({2, 0}));
    EXPECT_FALSE(page->selection({2, -1}));
    EXPECT_FALSE(pageShowing({})->selection({0, 5}));
}

TEST(PDFPageTextTest, GivesASelectionOverLinesOneRectangleEach)
{
    const auto page = pageShowing(showText(72, 700, "Hello") + showText(72, 680, "there"));
    const auto selection = page->selection({3, 5});
    ASSERT_EQ(selection->string(), QStringLiteral("lo\nth"));
    const std::vector<QRectF> lines = selection->lineBounds(*page);
    ASSERT_EQ(lines.size(), 2U);
    EXPECT_GT(lines[0].left(), 85);
    EXPECT_NEAR(lines[1].left(), 72, 0.01);
    EXPECT_EQ(selection->bounds(*page), lines[0].united(lines[1]));
}

TEST(PDFPageTextTest, HasNoBoundsOnAnotherPage)
{
    const auto page = pageShowing(showText(72, 700, "Hello"));
    const auto other = pageShowing(showText(72, 700, "Hello"));
    EXPECT_TRUE(page->selection({0, 5})->bounds(*other).isNull());
}

TEST(PDFPageTextTest, MapsBoxesToPageSpaceOnTurnedAndCroppedPages)
{
    const QByteArray content = showText(72, 300, "Hello");
    const auto upright = pageShowing(content, "/MediaBox[0 0 400 500]");
    const QRectF expected = boundsOf(*upright, {0, 5});
    for (const char* rotation : {"90", "180", "270", "-90", "450"}) {
        const auto page = pageShowing(
            content, QByteArray("/MediaBox[0 0 400 500]/CropBox[20 30 380 480]/Rotate ") + rotation);
        EXPECT_EQ(page->string(), QStringLiteral("Hello\n"));
        expectNear(boundsOf(*page, {0, 5}), expected);
    }
}

TEST(PDFPageTextTest, MapsTheBoxesOfTurnedText)
{
    const auto page = pageShowing("BT /F1 12 Tf 0 1 -1 0 200 100 Tm (Up) Tj ET");
    const QRectF bounds = boundsOf(*page, {0, 2});
    // The writing runs upwards from the point 200, 100; "Up" is 15.34 points long.
    EXPECT_NEAR(bounds.top(), 100, 0.01);
    EXPECT_NEAR(bounds.bottom(), 115.34, 0.01);
    EXPECT_LT(bounds.left(), 192);
    EXPECT_GT(bounds.right(), 200);
}

TEST(PDFPageTextTest, MapsBoxesOnAPageWithItsOwnUnit)
{
    const auto page = pageShowing(showText(72, 700, "Hello"), "/UserUnit 2");
    EXPECT_EQ(page->displaySize(), QSizeF(1224, 1584));
    EXPECT_NEAR(boundsOf(*page, {0, 5}).left(), 72, 0.01);
}

// Characters

TEST(PDFPageTextTest, GivesEachLetterOfALigatureItsPartOfTheBox)
{
    const auto page = pageWithMap("<41> <006600660069>", "BT /F2 12 Tf 72 700 Td (AB) Tj ET");
    ASSERT_EQ(page->string(), QStringLiteral("ffiB\n"));
    // The glyph of an A is 8.004 points wide.
    for (int i = 0; i < 3; ++i) {
        const QRectF box = boundsOf(*page, {i, 1});
        EXPECT_NEAR(box.left(), 72 + i * 2.668, 0.01);
        EXPECT_NEAR(box.width(), 2.668, 0.01);
    }
    EXPECT_NEAR(boundsOf(*page, {3, 1}).left(), 80.004, 0.01);
}

TEST(PDFPageTextTest, ReadsLigatureCharactersAsLetters)
{
    const auto page = pageWithMap("<41> <FB01> <42> <FB04>", "BT /F2 12 Tf 72 700 Td (ABC) Tj ET");
    ASSERT_EQ(page->string(), QStringLiteral("fifflC\n"));
    EXPECT_NEAR(boundsOf(*page, {1, 1}).left(), 76.002, 0.01);
}

TEST(PDFPageTextTest, GivesBothHalvesOfASurrogatePairTheSameBox)
{
    const auto page = pageWithMap("<41> <D83DDE00>", "BT /F2 12 Tf 72 700 Td (AB) Tj ET");
    ASSERT_EQ(page->string(), QStringLiteral("\U0001F600B\n"));
    EXPECT_EQ(boundsOf(*page, {0, 1}), boundsOf(*page, {1, 1}));
    EXPECT_NEAR(boundsOf(*page, {2, 1}).left(), 80.004, 0.01);
}

TEST(PDFPageTextTest, ReadsHalfASurrogatePairAsUnknown)
{
    const auto page = pageWithMap("<41> <D83D>", "BT /F2 12 Tf 72 700 Td (AB) Tj ET");
    EXPECT_EQ(page->string(), QStringLiteral("\uFFFDB\n"));
}

TEST(PDFPageTextTest, JoinsTheSurrogatePairsOfOneGlyph)
{
    const auto page = pageWithMap("<41> <D83DDE00D83DDE01>", "BT /F2 12 Tf 72 700 Td (AB) Tj ET");
    ASSERT_EQ(page->string(), QStringLiteral("\U0001F600\U0001F601B\n"));
    EXPECT_NEAR(boundsOf(*page, {2, 2}).left(), 76.002, 0.01);
}

TEST(PDFPageTextTest, DropsControlCharactersAndReadsWhiteSpaceAsSpaces)
{
    const auto page = pageWithMap(
        "<41> <0001> <42> <0007> <43> <00A0> <44> <0009> <45> <2003> <46> <000A>",
        "BT /F2 12 Tf 72 700 Td (xABxCxDxExFx) Tj ET");
    EXPECT_EQ(page->string(), QStringLiteral("xx x x x x\n"));
}

TEST(PDFPageTextTest, KeepsAMarkWithItsLetter)
{
    // Alef, bet with a patah upon it, gimel, each placed to the left of the one before.
    const auto page = pageWithMap(
        "<41> <05D0> <42> <05D1> <43> <05D2> <46> <05B7>",
        "BT /F2 12 Tf 1 0 0 1 200 700 Tm (A) Tj 1 0 0 1 192 700 Tm (B) Tj 1 0 0 1 193 700 Tm (F) Tj "
        "1 0 0 1 183 700 Tm (C) Tj ET");
    EXPECT_EQ(page->string(), QStringLiteral("אב\u05B7ג\n"));
}

// Vertical writing

TEST(PDFPageTextTest, ReadsVerticalWritingFromTheRightColumnToTheLeft)
{
    PDFWriter writer;
    const int descendant = writer.add(
        "<</Type/Font/Subtype/CIDFontType2/BaseFont/Helvetica/CIDSystemInfo<</Registry(Adobe)"
        "/Ordering(Identity)/Supplement 0>>/FontDescriptor<</Type/FontDescriptor/FontName/Helvetica/Flags 32"
        ">>>>");
    const int unicode = writer.addStream(
        "begincmap 1 begincodespacerange <0000> <FFFF> endcodespacerange 4 beginbfchar <0001> <65E5> "
        "<0002> <672C> <0003> <4E2D> <0004> <56FD> endbfchar endcmap");
    const int font = writer.add(
        "<</Type/Font/Subtype/Type0/BaseFont/Helvetica/Encoding/Identity-V/ToUnicode " +
        QByteArray::number(unicode) + " 0 R/DescendantFonts[" + QByteArray::number(descendant) + " 0 R]>>");
    writer.setFonts("/F2 " + QByteArray::number(font) + " 0 R");
    writer.addPage("BT /F2 12 Tf 1 0 0 1 200 700 Tm <00010002> Tj 1 0 0 1 220 700 Tm <00030004> Tj ET");
    const auto page = firstPage(writer);
    ASSERT_EQ(page->string(), QStringLiteral("中国\n日本\n"));
    const QRectF first = boundsOf(*page, {0, 1});
    EXPECT_NEAR(first.center().x(), 220, 1);
    EXPECT_NEAR(first.bottom(), 700, 2);
    EXPECT_NEAR(first.height(), 12, 0.5);
}

} // namespace
} // namespace pdf
