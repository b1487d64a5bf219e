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

TEST(PDFPageTextTest, TakesWordsThatArePrintedTwiceOnce)
{
    const auto page = pageShowing(
        showText(72, 700, "This ") + showText(96.7, 700, "agreement") + showText(96.9, 700, "agreement ") +
        showText(156.7, 700, "hereby") + showText(156.9, 700, "hereby"));
    EXPECT_EQ(page->string(), QStringLiteral("This agreement hereby\n"));
}

TEST(PDFPageTextTest, TakesALineThatIsPrintedAgainAfterOthersOnce)
{
    const auto page = pageShowing(
        showText(72, 700, "First line") + showText(72, 680, "Second line") +
        showText(72.3, 700, "First line") + showText(72.3, 680, "Second line, at length"));
    EXPECT_EQ(page->string(), QStringLiteral("First line\nSecond line, at length\n"));
}

TEST(PDFPageTextTest, TakesALigatureThatIsPrintedTwiceOnce)
{
    const auto page = pageWithMap(
        "<41> <006600660069>", "BT /F2 12 Tf 72 700 Td (A) Tj 0.3 0 Td (A) Tj 7.7 0 Td (B) Tj ET");
    EXPECT_EQ(page->string(), QStringLiteral("ffiB\n"));
}

TEST(PDFPageTextTest, KeepsLettersThatStandOnOneAnotherFurtherApart)
{
    const auto page = pageShowing(showText(72, 700, "Shadow") + showText(74.5, 697, "Shadow"));
    EXPECT_EQ(page->string(), QStringLiteral("Shadow\nShadow\n"));
}

TEST(PDFPageTextTest, ReadsAnUnnamedGlyphThatShowsNothingAsASpace)
{
    const auto page = pageWithMap("<20> <FFFD> <41> <FFFD>", "BT /F2 12 Tf 72 700 Td (one two A) Tj ET");
    EXPECT_EQ(page->string(), QStringLiteral("one two \uFFFD\n"));
}

// Spaced letters

TEST(PDFPageTextTest, ReadsSpacedLettersAsWords)
{
    const auto page = pageShowing("BT /F1 12 Tf 3 Tc 72 700 Td (Property tax) Tj ET");
    EXPECT_EQ(page->string(), QStringLiteral("Property tax\n"));
}

TEST(PDFPageTextTest, ReadsUnevenlySpacedLettersAsWords)
{
    // Some of the gaps are wider than narrow spaces are elsewhere, others are not.
    const auto page = pageShowing(
        "BT /F1 12 Tf 72 700 Td [(P) -160 (r) -140 (o) -165 (p) -155 (e) -160 (r) -130 (t) -145 (y) -450 "
        "(T) -160 (a) -140 (x)] TJ ET");
    EXPECT_EQ(page->string(), QStringLiteral("Property Tax\n"));
}

TEST(PDFPageTextTest, KeepsSpacedWordsApartThatStandCloseTogether)
{
    const auto page = pageShowing(
        "BT /F1 12 Tf 72 700 Td [(P) -150 (r) -150 (i) -150 (c) -150 (e) -360 (l) -150 (i) -150 (s) -150 "
        "(t)] TJ ET");
    EXPECT_EQ(page->string(), QStringLiteral("Price list\n"));
}

TEST(PDFPageTextTest, ReadsAnEvenlySpacedWordAsOne)
{
    const auto page = pageShowing("BT /F1 12 Tf 4 Tc 72 700 Td (INVOICE) Tj ET");
    EXPECT_EQ(page->string(), QStringLiteral("INVOICE\n"));
}

TEST(PDFPageTextTest, KeepsFiguresAndFewLettersThatStandAloneApart)
{
    const auto figures =
        pageShowing("BT /F1 12 Tf 72 700 Td [(1) -300 (2) -300 (3) -300 (4) -300 (5)] TJ ET");
    EXPECT_EQ(figures->string(), QStringLiteral("1 2 3 4 5\n"));
    const auto letters = pageShowing("BT /F1 12 Tf 72 700 Td [(a) -300 (b) -300 (c) -300 (d)] TJ ET");
    EXPECT_EQ(letters->string(), QStringLiteral("a b c d\n"));
}

TEST(PDFPageTextTest, KeepsShortWordsApart)
{
    const auto page = pageShowing(
        "BT /F1 12 Tf 72 700 Td [(2018) -250 (a) -250 (1) -250 (b) -250 (30) -250 (c) -250 (4)] TJ ET");
    EXPECT_EQ(page->string(), QStringLiteral("2018 a 1 b 30 c 4\n"));
}

TEST(PDFPageTextTest, KeepsTheWordsBeforeALeaderOfDotsApart)
{
    const auto page = pageShowing(
        "BT /F1 12 Tf 72 700 Td [(The) -300 (first) -300 (part) -300 (.) -300 (.) -300 (.) -300 (.) -300 (.) "
        "-300 (.) -300 (.) -300 (.) -300 (.) -300 (.) -300 (.) -300 (.) -300 (7)] TJ ET");
    EXPECT_EQ(page->string(), QStringLiteral("The first part . . . . . . . . . . . . 7\n"));
}

// Replacement text

TEST(PDFPageTextTest, ReadsTheActualTextInsteadOfTheGlyphs)
{
    const auto page =
        pageShowing("BT /F1 12 Tf 72 700 Td (Dru) Tj /Span <</ActualText (c)>> BDC (k-) Tj EMC (ker) Tj ET");
    EXPECT_EQ(page->string(), QStringLiteral("Drucker\n"));
}

TEST(PDFPageTextTest, SpreadsTheActualTextOverTheGlyphs)
{
    const auto page = pageShowing(
        "BT /F1 12 Tf 72 700 Td (AB) Tj /Span <</ActualText <FEFF006100E90063>>> BDC (XX) Tj EMC (C) Tj ET");
    ASSERT_EQ(page->string(), QStringLiteral("ABa\u00E9cC\n"));
    // A and B are 8.004 points wide, and so are both Xs.
    const double start = 72 + 2 * 8.004;
    for (int i = 0; i < 3; ++i) {
        const QRectF box = boundsOf(*page, {2 + i, 1});
        EXPECT_NEAR(box.left(), start + i * 5.336, 0.01);
        EXPECT_NEAR(box.width(), 5.336, 0.01);
    }
    EXPECT_NEAR(boundsOf(*page, {5, 1}).left(), start + 16.008, 0.01);
    EXPECT_EQ(page->characterIndex({start + 6, 703}), 3);
    EXPECT_EQ(page->selection({2, 3})->string(), QStringLiteral("a\u00E9c"));
}

TEST(PDFPageTextTest, ReadsTheActualTextOfAPropertyList)
{
    PDFWriter writer;
    writer.setResources("/Properties<</P1 <</ActualText (Signature)>>>>");
    writer.addPage("/Span /P1 BDC " + showText(72, 700, "xyz") + "EMC " + showText(72, 680, "Date"));
    EXPECT_EQ(firstPage(writer)->string(), QStringLiteral("Signature\nDate\n"));
}

TEST(PDFPageTextTest, TakesTheOuterOfTwoActualTexts)
{
    const auto page = pageShowing(
        "BT /F1 12 Tf 72 700 Td /Span <</ActualText (outer)>> BDC (a) Tj /Span <</ActualText (inner)>> BDC "
        "(b) Tj EMC /Other BMC (c) Tj EMC EMC (d) Tj ET");
    EXPECT_EQ(page->string(), QStringLiteral("outerd\n"));
}

TEST(PDFPageTextTest, LeavesOutGlyphsWhoseActualTextIsEmpty)
{
    const auto page = pageShowing(
        showText(72, 700, "Text") + "/Span <</ActualText ()>> BDC " + showText(72, 650, "****") + "EMC ");
    EXPECT_EQ(page->string(), QStringLiteral("Text\n"));
}

TEST(PDFPageTextTest, SharesAnActualTextOverLinesOut)
{
    const auto page = pageShowing(
        "/Span <</ActualText (abcdefghi)>> BDC " + showText(72, 700, "xxxxxx") + showText(72, 680, "xxx") +
        "EMC ");
    EXPECT_EQ(page->string(), QStringLiteral("abcdef\nghi\n"));
}

TEST(PDFPageTextTest, EndsWithAFormTheActualTextThatItLeavesOpen)
{
    PDFWriter writer;
    const int font = writer.add("<</Type/Font/Subtype/Type1/BaseFont/Helvetica>>");
    const QByteArray entries = "/Type/XObject/Subtype/Form/BBox[0 0 612 792]/Resources<</Font<</F1 " +
                               QByteArray::number(font) + " 0 R>>>>";
    const int open = writer.addStream(
        "EMC EMC /Span <</ActualText (replaced)>> BDC " + showText(72, 700, "shown"), entries);
    writer.setResources("/XObject<</X " + QByteArray::number(open) + " 0 R>>");
    writer.addPage("/X Do " + showText(72, 680, "after") + "EMC EMC " + showText(72, 660, "end"));
    EXPECT_EQ(firstPage(writer)->string(), QStringLiteral("replaced\nafter\nend\n"));
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

const std::vector<std::vector<const char*>> newspaper = {
    {"The council has met on", "Rain is expected over", "Prices of bread have"},
    {"Monday to talk about the", "the weekend, and more", "gone up once again this"},
    {"new bridge, which is to", "of it on Monday, when", "month, as the harvest"},
    {"be built across the river", "the wind will turn to the", "in the north was a poor"},
    {"before the next winter.", "west for some days.", "one after the drought."},
};

/// The columns' lines one column after the other.
QString byColumns(const std::vector<std::vector<const char*>>& rows)
{
    QString text;
    for (std::size_t column = 0; column < rows.front().size(); ++column) {
        for (const auto& row : rows)
            text += QLatin1String(row[column]) + QLatin1Char('\n');
    }
    return text;
}

/// Rows of cells 180 points apart. The second column may lie a little lower.
QByteArray drawnByRows(const std::vector<std::vector<const char*>>& rows, double lower = 0)
{
    QByteArray content;
    for (std::size_t row = 0; row < rows.size(); ++row) {
        for (std::size_t column = 0; column < rows[row].size(); ++column) {
            const double y = 700 - 14.0 * static_cast<double>(row) - (column == 1 ? lower : 0);
            content += showText(40 + 180.0 * static_cast<double>(column), y, rows[row][column]);
        }
    }
    return content;
}

TEST(PDFPageTextTest, ReadsColumnsThatAreDrawnRowByRowOneAfterTheOther)
{
    const auto page = pageShowing(
        showText(40, 740, "News of the week that reach over all of the columns and all of the page") +
        drawnByRows(newspaper) +
        showText(40, 600, "The last line reaches over all of the columns, too, of it"));
    EXPECT_EQ(
        page->string(),
        QStringLiteral("News of the week that reach over all of the columns and all of the page\n") +
            byColumns(newspaper) +
            QStringLiteral("The last line reaches over all of the columns, too, of it\n"));
}

TEST(PDFPageTextTest, ReadsColumnsWhoseLinesAreNotAtTheSameHeightOneAfterTheOther)
{
    EXPECT_EQ(pageShowing(drawnByRows(newspaper, 5))->string(), byColumns(newspaper));
}

TEST(PDFPageTextTest, FindsAndSelectsWhatGoesOverTheLinesOfAColumn)
{
    const auto page = pageShowing(drawnByRows(newspaper));
    const QString phrase = QStringLiteral("weekend, and more\nof it on");
    const qsizetype start = page->string()->indexOf(phrase);
    ASSERT_GE(start, 0);
    const auto selection = page->selection({start, phrase.size()});
    EXPECT_EQ(selection->string(), phrase);
    const std::vector<QRectF> lines = selection->lineBounds(*page);
    ASSERT_EQ(lines.size(), 2U);
    for (const QRectF& line : lines) {
        EXPECT_GE(line.left(), 219.9);
        EXPECT_LT(line.right(), 400);
    }
    const auto found = page->document()->findString(QStringLiteral("more of it on Monday"), {});
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(found.front().string(), QStringLiteral("more\nof it on Monday"));
    EXPECT_EQ(page->characterIndex(lines[1].center()) > start, true);
}

TEST(PDFPageTextTest, KeepsTheRowsOfATableWhole)
{
    const std::vector<std::vector<const char*>> bill = {
        {"Invoice date", "3 March 2024", "Page 1"},      {"Due date", "2 April 2024", "net 30 days"},
        {"Amount due", "$ 1,204.50", "incl. tax"},       {"Account number", "4711-0815", "by transfer"},
        {"Reference", "RF18 5390 0754", "please quote"},
    };
    QString rows;
    for (const auto& row : bill)
        rows += QStringLiteral("%1 %2 %3\n")
                    .arg(QLatin1String(row[0]), QLatin1String(row[1]), QLatin1String(row[2]));
    EXPECT_EQ(pageShowing(drawnByRows(bill))->string(), rows);
}

TEST(PDFPageTextTest, KeepsLabelsAndTheFiguresAfterThemOnOneLine)
{
    const auto page = pageShowing(
        showText(40, 700, "the amount that is due for this month") + showText(330, 700, "1,204.50 EUR") +
        showText(40, 686, "the amount that was due and not paid") + showText(330, 686, "96.10 EUR") +
        showText(40, 672, "the fee for the reminder of last month") + showText(330, 672, "5.00 EUR") +
        showText(40, 658, "what is to be paid altogether by then") + showText(330, 658, "1,305.60 EUR"));
    EXPECT_EQ(
        page->string(), QStringLiteral("the amount that is due for this month 1,204.50 EUR\n"
                                       "the amount that was due and not paid 96.10 EUR\n"
                                       "the fee for the reminder of last month 5.00 EUR\n"
                                       "what is to be paid altogether by then 1,305.60 EUR\n"));
}

TEST(PDFPageTextTest, KeepsTheLinesAroundAHoleInAParagraph)
{
    const QByteArray through =
        "one line of a paragraph that runs from the left to the right of the page, all "
        "of it";
    const auto page = pageShowing(
        showText(40, 700, through) + showText(40, 686, "here a redaction takes some words") +
        showText(330, 686, "away from the line, and so it") +
        showText(40, 672, "does here, where the text goes on") +
        showText(330, 672, "behind it to the end and") +
        showText(40, 658, "here, for the third and the last time") +
        showText(330, 658, "of all lines that it hits;") + showText(40, 644, through));
    EXPECT_EQ(page->string()->count(QLatin1Char('\n')), 5) << page->string()->toStdString();
    EXPECT_TRUE(page->string()->contains(QStringLiteral("takes some words away from the line")));
}

TEST(PDFPageTextTest, ReadsARowThatIsDrawnFromTheRightFromTheLeft)
{
    const auto page = pageShowing(
        showText(140, 700, "19 April 2014") + showText(72, 700, "Due date:") +
        showText(400, 680, "37,499.96") + showText(220, 680, "District director") +
        showText(72, 680, "Bain, J."));
    EXPECT_EQ(
        page->string(), QStringLiteral("Due date: 19 April 2014\nBain, J. District director 37,499.96\n"));
    EXPECT_NEAR(boundsOf(*page, {0, 3}).left(), 72, 0.01);
    EXPECT_NEAR(boundsOf(*page, {10, 2}).left(), 140, 0.01);
    // The space between the two.
    EXPECT_NEAR(boundsOf(*page, {9, 1}).right(), 140, 0.01);
}

TEST(PDFPageTextTest, JoinsThePiecesOfALineThatAreDrawnApart)
{
    // "Insured from " is 70.7 points wide, and 61 is 13.3.
    const auto page = pageShowing(
        showText(72, 700, "Insured from ") + showText(72, 686, "Insured from ") + showText(142.7, 700, "61") +
        showText(142.7, 686, "65") + showText(156.1, 700, " on") + showText(156.1, 686, " to 75"));
    EXPECT_EQ(page->string(), QStringLiteral("Insured from 61 on\nInsured from 65 to 75\n"));
}

TEST(PDFPageTextTest, JoinsNoPiecesThatAHighExponentParts)
{
    const auto page = pageShowing(
        "BT /F1 12 Tf 72 700 Td (E = mc) Tj /F1 7 Tf 9 Ts (2) Tj /F1 12 Tf 0 Ts (is energy) Tj ET");
    EXPECT_EQ(page->string(), QStringLiteral("E = mc\n2\nis energy\n"));
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
