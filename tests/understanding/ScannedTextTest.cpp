// SPDX-License-Identifier: AGPL-3.0-or-later
#include "understanding/ScannedText.h"

#include <gtest/gtest.h>

#include <unicode/uregex.h>

#include <QString>

#include <memory>

namespace quillo {
namespace {

class Matcher
{
public:
    explicit Matcher(const char16_t* pattern)
        : m_expression(uregex_open(pattern, -1, 0, nullptr, &m_error), uregex_close)
    {}

    bool matches(const QString& text)
    {
        uregex_setText(
            m_expression.get(), reinterpret_cast<const char16_t*>(text.utf16()),
            static_cast<int32_t>(text.size()), &m_error);
        const bool result = uregex_matches(m_expression.get(), 0, &m_error);
        EXPECT_TRUE(U_SUCCESS(m_error));
        return result;
    }

private:
    UErrorCode m_error = U_ZERO_ERROR;
    std::unique_ptr<URegularExpression, decltype(&uregex_close)> m_expression;
};

TEST(ScannedTextTest, HasTheDigitsAndSpacesOfRegularExpressions)
{
    Matcher digit(u"\\d");
    Matcher space(u"\\s");
    for (char32_t character = 0; character <= 0x10FFFF; ++character) {
        const QString units = QString::fromUcs4(&character, 1);
        const ScannedText text(units);
        const qsizetype expected = digit.matches(units) ? units.size() : 0;
        ASSERT_EQ(text.digitAt(0), expected) << static_cast<std::uint32_t>(character);
        ASSERT_EQ(text.digitBefore(units.size()), expected) << static_cast<std::uint32_t>(character);
        ASSERT_EQ(units.size() == 1 && text.isSpace(0), space.matches(units))
            << static_cast<std::uint32_t>(character);
    }
}

TEST(ScannedTextTest, StopsAtEveryDigitColonAndAtSign)
{
    for (char32_t character = 0; character <= 0x10FFFF; ++character) {
        const QString unit = QString::fromUcs4(&character, 1);
        const bool needed = character == U':' || character == U'@' || ScannedText(unit).digitAt(0) != 0;
        if (!needed)
            continue;
        // Within a block of the search, and in the rest behind the last one.
        for (const qsizetype at : {5, 70}) {
            const QString units = QString(at, QLatin1Char('x')) + unit + QString(10, QLatin1Char('y'));
            ASSERT_EQ(ScannedText(units).nextTrigger(0), at) << static_cast<std::uint32_t>(character);
        }
    }
}

TEST(ScannedTextTest, PassesOverTextWithoutAny)
{
    const QString units = QStringLiteral("Text in words, (with) signs; ünd Grüße, Ελληνικά! ").repeated(7);
    EXPECT_EQ(ScannedText(units).nextTrigger(0), units.size());
}

TEST(ScannedTextTest, ReadsNothingOutsideOfTheText)
{
    const ScannedText text(u"1");
    EXPECT_EQ(text.unit(-1), u'\0');
    EXPECT_EQ(text.unit(1), u'\0');
    EXPECT_EQ(text.digitBefore(0), 0);
    EXPECT_EQ(text.afterDigits(0, 2), ScannedText::nowhere);
    EXPECT_EQ(text.beforeDigits(1, 2, 0), 0);
    EXPECT_EQ(ScannedText(QStringView()).nextTrigger(0), 0);
}

TEST(ScannedTextTest, TakesHalfAPairForNoDigit)
{
    constexpr char16_t halves[] = {0xDFCE, 0xD835};
    const ScannedText text(QStringView(halves, 2));
    EXPECT_EQ(text.digitAt(0), 0);
    EXPECT_EQ(text.digitAt(1), 0);
    EXPECT_EQ(text.digitBefore(1), 0);
    EXPECT_EQ(text.digitBefore(2), 0);

    // Two first halves of pairs; reckoned together as if they were one pair they give a digit.
    constexpr char16_t firstHalves[] = {0xD836, 0xDBCE};
    EXPECT_EQ(ScannedText(QStringView(firstHalves, 2)).digitAt(0), 0);
}

} // namespace
} // namespace quillo
