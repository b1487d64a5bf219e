// SPDX-License-Identifier: AGPL-3.0-or-later
#include "document/PDFTextExtractor.h"

#include "pdf/PDFDocument.h"
#include "pdf/PDFPage.h"
#include "support/PDFWriter.h"
#include "support/Printing.h"

#include <gtest/gtest.h>

namespace quillo {
namespace {

/// Boxes cover as many of the page's characters as a word has for a reader, however many units that takes.
class WordBoxesTest : public testing::Test
{
protected:
    /// Reads a page that shows this text in a font whose letter A stands for the code points, in hexadecimal.
    void read(const QByteArray& codePoints, const QByteArray& text)
    {
        PDFWriter writer;
        const int map = writer.addStream(
            "/CIDInit /ProcSet findresource begin 12 dict begin begincmap /CMapType 2 def\n"
            "1 begincodespacerange <00> <FF> endcodespacerange\n"
            "1 beginbfchar <41> <" +
            codePoints + "> endbfchar\nendcmap end end");
        const int font = writer.add(
            "<</Type/Font/Subtype/Type1/BaseFont/Helvetica/ToUnicode " + QByteArray::number(map) + " 0 R>>");
        writer.setFonts("/F2 " + QByteArray::number(font) + " 0 R");
        writer.addPage("BT /F2 12 Tf 72 700 Td (" + text + ") Tj ET");
        const QString path = m_folder.write(QStringLiteral("document.pdf"), writer.bytes());
        const auto document = pdf::PDFDocument::open(path);
        ASSERT_TRUE(document);
        m_page = (*document)->page(0);
        const auto reading = PDFTextExtractor::readDocument(path, std::nullopt, {});
        ASSERT_TRUE(reading);
        m_text = reading->pageTexts.at(0);
        ASSERT_TRUE(m_text.boundingBoxes);
    }

    QRectF boundsOfFirst(qsizetype units) const { return m_page->selection({0, units})->bounds(*m_page); }

    TestFolder m_folder;
    std::shared_ptr<pdf::PDFPage> m_page;
    PageText m_text{0, QString(), false, std::nullopt};
};

TEST_F(WordBoxesTest, CountALetterWithItsAccentOnce)
{
    read("00650301", "AAAA");
    ASSERT_EQ(m_text.text, QStringLiteral("e\u0301").repeated(4) + u'\n');
    ASSERT_EQ(m_text.boundingBoxes->size(), 1U);
    EXPECT_EQ(m_text.boundingBoxes->front().rect, boundsOfFirst(4));
    EXPECT_LT(m_text.boundingBoxes->front().rect.width(), boundsOfFirst(8).width())
        << "units are not counted";
}

TEST_F(WordBoxesTest, CountAnEmojiOnce)
{
    read("D83DDE00", "AAAA");
    ASSERT_EQ(m_text.text, QStringLiteral("\U0001F600").repeated(4) + u'\n');
    ASSERT_EQ(m_text.boundingBoxes->size(), 1U);
    EXPECT_EQ(m_text.boundingBoxes->front().rect, boundsOfFirst(4));
    EXPECT_LT(m_text.boundingBoxes->front().rect.width(), boundsOfFirst(8).width());
}

TEST_F(WordBoxesTest, LeaveTheTextAsItStandsOnThePage)
{
    read("0041", "  A  ");
    EXPECT_EQ(m_text.text, QStringLiteral("  A  \n"));
}

} // namespace
} // namespace quillo
