// SPDX-License-Identifier: AGPL-3.0-or-later
#include "cli/TextLayout.h"

#include "support/Printing.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quillo::cli {
namespace {

using testing::ElementsAre;

TEST(DisplayWidthTest, CountsColumnsAndNotCodeUnits)
{
    EXPECT_EQ(displayWidth(u""), 0);
    EXPECT_EQ(displayWidth(u"plain"), 5);
    EXPECT_EQ(displayWidth(u"Grüße"), 5);
    EXPECT_EQ(displayWidth(u"e\u0301"), 1) << "an accent of its own stands on the letter before";
    EXPECT_EQ(displayWidth(u"早餐"), 4);
    EXPECT_EQ(displayWidth(u"😀"), 2);
    EXPECT_EQ(displayWidth(u"👩\u200d👧"), 2) << "joined emoji are one picture";
}

TEST(WrappedTest, BreaksAtSpaces)
{
    EXPECT_THAT(
        wrapped(u"one two three", 7), ElementsAre(QStringLiteral("one two"), QStringLiteral("three")));
}

TEST(WrappedTest, KeepsLineFeeds)
{
    EXPECT_THAT(
        wrapped(u"one\n\ntwo", 10), ElementsAre(QStringLiteral("one"), QString(), QStringLiteral("two")));
}

TEST(WrappedTest, CutsAWordThatIsLongerThanALine)
{
    EXPECT_THAT(
        wrapped(u"ab abcdefgh c", 4),
        ElementsAre(
            QStringLiteral("ab"), QStringLiteral("abcd"), QStringLiteral("efgh"), QStringLiteral("c")));
}

TEST(WrappedTest, NeverCutsThroughAUserPerceivedCharacter)
{
    EXPECT_THAT(wrapped(u"e\u0301e\u0301", 1), ElementsAre(u"e\u0301", u"e\u0301"));
    EXPECT_THAT(wrapped(u"早餐", 3), ElementsAre(u"早", u"餐"));
}

TEST(WrappedTest, GivesOneEmptyLineForNoText)
{
    EXPECT_THAT(wrapped(u"", 5), ElementsAre(QString()));
}

TEST(RowTest, SetsCellsSideBySideOverAsManyLinesAsTheyNeed)
{
    EXPECT_EQ(
        row({{QStringLiteral("key"), Style::bold, 4}, {QStringLiteral("one two"), Style::plain, 3}}, {}, 1),
        QStringLiteral(" key   one\n       two\n"));
}

TEST(RowTest, AlignsBehindWideCharacters)
{
    EXPECT_EQ(
        row({{QStringLiteral("早"), Style::plain, 4}, {QStringLiteral("x"), Style::plain, 3}}, {}),
        QStringLiteral("早    x\n"));
}

TEST(RowTest, LeavesNoSpacesAtTheEndOfALine)
{
    EXPECT_EQ(
        row({{QStringLiteral("a"), Style::plain, 9}, {QString(), Style::plain, 9}}, {}),
        QStringLiteral("a\n"));
}

TEST(RowTest, ColoursOnlyWhereTheTerminalHasColours)
{
    Terminal terminal;
    terminal.hasColours = true;
    EXPECT_EQ(
        row({{QStringLiteral("a"), Style::bold, 3}, {QStringLiteral("b"), Style::plain, 3}}, terminal),
        QStringLiteral("\x1b[1ma\x1b[0m    b\n"));
}

} // namespace
} // namespace quillo::cli
