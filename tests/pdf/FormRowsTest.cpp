// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/FormFile.h"

#include <gtest/gtest.h>

namespace pdf {
namespace {

/// A list box of three options, 100 points wide and 80 high, with an appearance of another program.
class FormRowsTest : public testing::Test
{
protected:
    /// `content` shows the options; /Nested is a form that shows them, too, as `nested` says.
    void makeList(
        const QByteArray& content, const QByteArray& nested = "", const QByteArray& font = "/Helv 10 Tf",
        const QByteArray& entries = "")
    {
        PDFWriter& writer = m_file.writer();
        const QByteArray helvetica =
            QByteArray::number(writer.add("<</Type/Font/Subtype/Type1/BaseFont/Helvetica>>"));
        const QByteArray resources = "/Resources<</Font<</Helv " + helvetica + " 0 R>>";
        const QByteArray form = QByteArray::number(writer.addStream(
            nested, "/Type/XObject/Subtype/Form/BBox[0 0 100 80]/Matrix[1 0 0 1 0 5]" + resources + ">>"));
        const QByteArray appearance = QByteArray::number(writer.addStream(
            content, "/Type/XObject/Subtype/Form/BBox[10 20 110 100]" + resources + "/XObject<</Nested " +
                         form + " 0 R>>>>"));
        m_file.setFormEntries("/DR<</Font<</Helv " + helvetica + " 0 R>>>>");
        m_file.add(
            "/FT/Ch/T(list)/Opt[(A)(B)<FEFF0416>]/Rect[20 20 120 100]/DA(" + font + " 0 g)/AP<</N " +
            appearance + " 0 R>>" + entries);
    }

    std::optional<FormFieldRows> rows() { return m_file.field("list").rows; }

    void expectRows(double top, double height, double baseline)
    {
        const auto found = rows();
        ASSERT_TRUE(found);
        EXPECT_NEAR(found->top, top, 0.01);
        EXPECT_NEAR(found->height, height, 0.01);
        EXPECT_NEAR(found->baseline, baseline, 0.01);
        EXPECT_NEAR(found->fontSize, 10, 0.01);
    }

    /// From which row of the picture on the field has the colour of a selected option, and up to which.
    std::pair<int, int> highlight()
    {
        const QImage picture = m_file.pictureOf(m_file.field("list"));
        std::pair<int, int> place = {-1, -1};
        for (int y = 0; y < picture.height(); ++y) {
            const QColor colour = picture.pixelColor(90, y);
            if (colour.blue() - colour.red() < 45)
                continue;
            if (place.first < 0)
                place.first = y;
            place.second = y + 1;
        }
        return place;
    }

    FormFile m_file;
};

constexpr const char* evenRows = "0.6 0.757 0.855 rg 11 61 98 16 re f "
                                 "BT /Helv 10 Tf 0 g 14 81 Td (A) Tj ET BT /Helv 10 Tf 14 65 Td (B) Tj ET BT "
                                 "/Helv 10 Tf 14 49 Td (C) Tj ET";

struct Placing
{
    const char* content;
    const char* nested;
};

class FormRowsPlacedTest : public FormRowsTest, public testing::WithParamInterface<Placing>
{
};

TEST_P(FormRowsPlacedTest, AreFoundHoweverTheTextIsPlaced)
{
    makeList(GetParam().content, GetParam().nested);
    // The room above the text in a row is that below it.
    expectRows(19 - 9.31 - 2.22, 16, 9.31 + 2.22);
    EXPECT_NEAR(rows()->left.value_or(0), 4, 0.01);
}

INSTANTIATE_TEST_SUITE_P(
    FormRows, FormRowsPlacedTest,
    testing::Values(
        Placing{"BT /Helv 10 Tf 14 81 Td (A) Tj 0 -16 Td [(B)] TJ 0 -16 Td (C) Tj ET", ""},
        Placing{"BT /Helv 10 Tf 16 TL 14 81 Td (A) Tj T* (B) Tj (more) Tj T* (C) Tj ET", ""},
        Placing{"BT /Helv 10 Tf 14 97 Td 0 -16 TD (A) Tj (B) ' 0 0 (C) \" ET", ""},
        Placing{"BT /Helv 5 Tf 2 0 0 2 14 81 Tm (A) Tj 2 0 0 2 14 65 Tm (B) Tj 0 -8 Td (C) Tj ET", ""},
        Placing{"q 1 0 0 1 10 20 cm BT /Helv 10 Tf 16 TL 4 61 Td (A) Tj T* (B) Tj T* (C) Tj ET Q", ""},
        Placing{
            "q 1 0 0 1 10 20 cm /Nested Do Q",
            "BT /Helv 10 Tf 1 0 0 1 4 56 Tm (A) Tj 0 -16 Td (B) Tj 0 -16 Td (C) Tj ET"}));

TEST_F(FormRowsTest, BeginWhereTheColourOfASelectedOptionDoes)
{
    makeList(evenRows);
    expectRows(7, 16, 12);
}

TEST_F(FormRowsTest, GiveAFieldWithoutAFontSizeTheirs)
{
    makeList(evenRows, "", "/Helv 0 Tf");
    expectRows(7, 16, 12);
}

class FormRowsUnknownTest : public FormRowsTest, public testing::WithParamInterface<const char*>
{
};

TEST_P(FormRowsUnknownTest, AreNotGuessedFromWhatIsNoList)
{
    makeList(GetParam());
    EXPECT_FALSE(rows());
}

INSTANTIATE_TEST_SUITE_P(
    FormRows, FormRowsUnknownTest,
    testing::Values(
        "", "BT /Helv 10 Tf 14 81 Td (A) Tj ET",
        "BT /Helv 10 Tf 14 81 Td (A) Tj 0 -16 Td (B) Tj 0 -20 Td (C) Tj ET",
        "BT /Helv 10 Tf 14 85 Td (A) Tj 0 -7 Td (B) Tj 0 -7 Td (C) Tj ET",
        "BT /Helv 10 Tf 14 85 Td (A) Tj 0 -31 Td (B) Tj 0 -31 Td (C) Tj ET",
        "BT /Helv 20 Tf 14 81 Td (A) Tj 0 -20 Td (B) Tj 0 -20 Td (C) Tj ET",
        "BT /Helv 10 Tf 14 65 Td (B) Tj 0 -16 Td (C) Tj ET",
        "BT /Helv 10 Tf 14 88 Td (A) Tj 0 -14 Td (B) Tj 0 -14 Td (C) Tj 0 -14 Td (D) Tj ET",
        "BT /Helv 10 Tf 0 1 -1 0 30 40 Tm (A) Tj 0 -16 Td (B) Tj ET",
        "BT /Helv 10 Tf 14 1e39 Td (A) Tj 0 -1e39 Td (B) Tj 0 -16 Td (C) Tj ET",
        "BT /Helv 10 Tf ( <</ [ >> Td"));

TEST_F(FormRowsTest, StayWhenTheFieldIsFilled)
{
    makeList(evenRows);
    EXPECT_EQ(highlight(), std::make_pair(23, 39));
    // The form's font has no glyph for the last option, so another font shows them all.
    for (const int option : {0, 2, 1}) {
        ASSERT_TRUE(m_file.set("list", std::vector<int>{option}));
        EXPECT_EQ(highlight(), std::make_pair(7 + 16 * option, 7 + 16 * option + 16));
        expectRows(7, 16, 12);
        EXPECT_NEAR(rows()->left.value_or(0), 4, 0.01);
    }
}

} // namespace
} // namespace pdf
