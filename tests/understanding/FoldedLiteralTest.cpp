// SPDX-License-Identifier: AGPL-3.0-or-later
#include "understanding/FoldedLiteral.h"

#include <gtest/gtest.h>

#include <unicode/ustring.h>

#include <QString>

#include <algorithm>
#include <string>

namespace quillo {
namespace {

constexpr qsizetype nowhere = ScannedText::nowhere;

qsizetype after(QStringView text, std::string_view literal)
{
    return afterLiteral(ScannedText(text), 0, literal);
}

qsizetype before(QStringView text, std::string_view literal)
{
    return beforeLiteral(ScannedText(text), text.size(), literal);
}

TEST(FoldedLiteralTest, MatchesInAnyCase)
{
    EXPECT_EQ(after(u"StReEt x", "street"), 6);
    EXPECT_EQ(before(u"x StReEt", "street"), 2);
}

TEST(FoldedLiteralTest, DoesNotMatchBeyondTheText)
{
    EXPECT_EQ(after(u"stree", "street"), nowhere);
    EXPECT_EQ(before(u"treet", "street"), nowhere);
    EXPECT_EQ(after(QStringView(), "a"), nowhere);
}

TEST(FoldedLiteralTest, TakesTheLongSAndTheKelvinSignForTheirLetters)
{
    EXPECT_EQ(after(u"\u017Ft", "st"), 2);
    EXPECT_EQ(before(u"TR\u212A", "trk"), 0);
}

TEST(FoldedLiteralTest, TakesALigatureForItsLetters)
{
    EXPECT_EQ(after(u"\uFB06reet", "street"), 5);
    EXPECT_EQ(before(u"Con\uFB01rmation", "confirmation"), 0);
}

TEST(FoldedLiteralTest, DoesNotTakeAPartOfALigature)
{
    EXPECT_EQ(after(u"Re\uFB00", "ref"), nowhere);
    EXPECT_EQ(before(u"\uFB00e", "fe"), nowhere);
}

TEST(FoldedLiteralTest, DoesNotTakeLettersThatFoldToMoreThanAscii)
{
    // y with a ring above, h with a line below.
    EXPECT_EQ(after(u"Wa\u1E99", "way"), nowhere);
    EXPECT_EQ(after(u"Marc\u1E96", "march"), nowhere);
}

TEST(FoldedLiteralTest, KnowsEveryCharacterThatFoldsToAsciiLetters)
{
    for (char32_t character = 0x80; character <= 0x10FFFF; ++character) {
        const QString text = QString::fromUcs4(&character, 1);
        char16_t folded[8];
        UErrorCode error = U_ZERO_ERROR;
        const int32_t length = u_strFoldCase(
            folded, 8, reinterpret_cast<const char16_t*>(text.utf16()), static_cast<int32_t>(text.size()),
            U_FOLD_CASE_DEFAULT, &error);
        ASSERT_TRUE(U_SUCCESS(error));
        std::string expected(folded, folded + length);
        if (std::any_of(folded, folded + length, [](char16_t unit) { return unit >= 0x80; }))
            expected.clear();
        if (text.size() == 1) {
            ASSERT_EQ(foldedToAscii(text[0].unicode()), expected) << static_cast<std::uint32_t>(character);
        } else {
            ASSERT_EQ(expected, "") << static_cast<std::uint32_t>(character);
        }
    }
}

} // namespace
} // namespace quillo
