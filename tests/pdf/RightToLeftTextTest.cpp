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

/// A page whose font /F2 shows capital letters as the Hebrew alphabet and all else as it is; each letter is
/// 6 points wide.
std::shared_ptr<PDFPage> pageShowing(const QByteArray& content)
{
    PDFWriter writer;
    const int unicode =
        writer.addStream("/CIDInit /ProcSet findresource begin 12 dict begin begincmap\n"
                         "1 begincodespacerange <00> <FF> endcodespacerange\n"
                         "3 beginbfrange <20> <40> <0020> <41> <5A> <05D0> <5B> <7E> <005B> endbfrange\n"
                         "1 beginbfchar <7F> <064406270644> endbfchar\n"
                         "endcmap end end");
    const int font = writer.add(
        "<</Type/Font/Subtype/Type1/BaseFont/Courier/ToUnicode " + QByteArray::number(unicode) + " 0 R>>");
    writer.setFonts("/F2 " + QByteArray::number(font) + " 0 R");
    writer.addPage(content);
    const TestFolder folder;
    const auto document = PDFDocument::open(folder.write(QStringLiteral("text.pdf"), writer.bytes()));
    return document ? (*document)->page(0) : nullptr;
}

/// Text as it stands on the page, from left to right.
std::shared_ptr<PDFPage> pageWithLine(const QByteArray& shown)
{
    return pageShowing("BT /F2 10 Tf 100 700 Td (" + shown + ") Tj ET");
}

/// The test's way to write Hebrew: capital letters, A for alef.
QString hebrew(const char* text)
{
    QString result = QString::fromLatin1(text);
    for (QChar& letter : result) {
        if (letter.isUpper())
            letter = QChar(0x05D0 + letter.unicode() - 'A');
    }
    return result;
}

TEST(RightToLeftTextTest, IsReadFromTheRight)
{
    EXPECT_EQ(pageWithLine("DCBA")->string(), hebrew("ABCD\n"));
    EXPECT_EQ(pageWithLine("FED CBA")->string(), hebrew("ABC DEF\n"));
}

TEST(RightToLeftTextTest, KeepsNumbersReadable)
{
    EXPECT_EQ(pageWithLine("FED 12.50 CBA")->string(), hebrew("ABC 12.50 DEF\n"));
    EXPECT_EQ(pageWithLine("21/11/2026 CBA")->string(), hebrew("ABC 21/11/2026\n"));
    EXPECT_EQ(pageWithLine("50% CBA")->string(), hebrew("ABC 50%\n"));
}

TEST(RightToLeftTextTest, KeepsLeftToRightWordsReadable)
{
    EXPECT_EQ(pageWithLine("GFED one two CBA")->string(), hebrew("ABC one two DEFG\n"));
    EXPECT_EQ(pageWithLine("one CBA two three")->string(), hebrew("one ABC two three\n"));
}

TEST(RightToLeftTextTest, MirrorsBracketsThatWouldCloseBeforeTheyOpen)
{
    EXPECT_EQ(pageWithLine("\\(FED\\) CBA")->string(), hebrew("ABC (DEF)\n"));
    EXPECT_EQ(pageWithLine("\\)FED\\( CBA")->string(), hebrew("ABC (DEF)\n"));
}

TEST(RightToLeftTextTest, IsReadTheSameWhenItWasPlacedInReadingOrder)
{
    const auto page = pageShowing("BT /F2 10 Tf 1 0 0 1 130 700 Tm (A) Tj 1 0 0 1 124 700 Tm (B) Tj "
                                  "1 0 0 1 112 700 Tm (C) Tj 1 0 0 1 94 700 Tm (42) Tj "
                                  "1 0 0 1 82 700 Tm (D) Tj ET");
    EXPECT_EQ(page->string(), hebrew("AB C 42 D\n"));
}

TEST(RightToLeftTextTest, TakesTheLettersOfALigatureInTheirOrder)
{
    // One glyph for lam, alef and lam, with a letter to its left.
    EXPECT_EQ(pageWithLine("A\177")->string(), QString::fromUtf8("لال") + hebrew("A\n"));
}

TEST(RightToLeftTextTest, PutsThePlaceBeforeALetterToItsRight)
{
    const auto text = pageWithLine("DCBA")->text();
    EXPECT_EQ(text->characterIndex({101, 702}), 3);
    EXPECT_EQ(text->characterIndex({122, 702}), 0);
    EXPECT_EQ(text->insertionIndex({123, 702}), 0);
    EXPECT_EQ(text->insertionIndex({119, 702}), 1);
    EXPECT_EQ(text->insertionIndex({101, 702}), 4);
    EXPECT_NEAR(text->caret(0).x1(), 124, 0.01);
    EXPECT_NEAR(text->caret(4).x1(), 100, 0.01);
}

TEST(RightToLeftTextTest, IsSelectedBetweenTwoPoints)
{
    const auto page = pageWithLine("FED CBA");
    const auto selection = page->selection(QPointF(143, 702), QPointF(112, 702));
    ASSERT_TRUE(selection);
    EXPECT_EQ(selection->string(), hebrew("ABC D"));
}

TEST(RightToLeftTextTest, IsOutlinedInPiecesWhereDirectionsMeet)
{
    // Read as "one ABC": up to the B, the middle of the line is not selected.
    const auto page = pageWithLine("one two CBA");
    const auto text = page->text();
    ASSERT_EQ(text->string(), hebrew("one two ABC\n"));
    EXPECT_EQ(text->outlines({4, 7}).size(), 1U);
    const auto pieces = text->outlines({4, 5});
    ASSERT_EQ(pieces.size(), 2U);
    EXPECT_NEAR(pieces[0].boundingRect().right(), 148, 0.01);
    EXPECT_NEAR(pieces[1].boundingRect().left(), 160, 0.01);
}

TEST(RightToLeftTextTest, TurnsPresentationFormsIntoLetters)
{
    const TestFolder folder;
    PDFWriter writer;
    const int unicode =
        writer.addStream("/CIDInit /ProcSet findresource begin 12 dict begin begincmap\n"
                         "1 begincodespacerange <00> <FF> endcodespacerange\n"
                         "3 beginbfchar <41> <FEFB> <42> <FE8D> <43> <FB01> endbfchar endcmap end end");
    const int font = writer.add(
        "<</Type/Font/Subtype/Type1/BaseFont/Courier/ToUnicode " + QByteArray::number(unicode) + " 0 R>>");
    writer.setFonts("/F2 " + QByteArray::number(font) + " 0 R");
    writer.addPage("BT /F2 10 Tf 100 700 Td (BA) Tj ET BT /F2 10 Tf 100 600 Td (C) Tj ET");
    const auto document = PDFDocument::open(folder.write(QStringLiteral("text.pdf"), writer.bytes()));
    EXPECT_EQ((*document)->page(0)->string(), QString::fromUtf8("لاا\nfi\n"));
}

} // namespace
} // namespace pdf
