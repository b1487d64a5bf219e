// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/PageRanges.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace pdf {
namespace {

using testing::ElementsAre;
using testing::Optional;

TEST(PageRangesTest, NamesSinglePagesAndRanges)
{
    EXPECT_THAT(parsePageRanges(u"1-3, 5, 8-", 10), Optional(ElementsAre(0, 1, 2, 4, 7, 8, 9)));
    EXPECT_THAT(parsePageRanges(u"4", 10), Optional(ElementsAre(3)));
    EXPECT_THAT(parsePageRanges(u"-2", 10), Optional(ElementsAre(0, 1)));
}

TEST(PageRangesTest, KeepsTheOrderOfTheText)
{
    EXPECT_THAT(parsePageRanges(u"5,1-2", 10), Optional(ElementsAre(4, 0, 1)));
    EXPECT_THAT(parsePageRanges(u"3-1", 10), Optional(ElementsAre(2, 1, 0)));
    EXPECT_THAT(parsePageRanges(u"2, 2", 10), Optional(ElementsAre(1, 1)));
}

TEST(PageRangesTest, TakesSpacesAndTheDashThatTypographersUse)
{
    EXPECT_THAT(parsePageRanges(u"  1 - 2 ,4 ", 10), Optional(ElementsAre(0, 1, 3)));
    EXPECT_THAT(parsePageRanges(u"2\u20133", 10), Optional(ElementsAre(1, 2)));
}

TEST(PageRangesTest, LeavesOutWhatIsBehindTheLastPage)
{
    EXPECT_THAT(parsePageRanges(u"2-99999999999999999999", 3), Optional(ElementsAre(1, 2)));
    EXPECT_THAT(parsePageRanges(u"9-2", 3), Optional(ElementsAre(2, 1)));
    EXPECT_THAT(parsePageRanges(u"1, 7, 5-", 3), Optional(ElementsAre(0)));
}

TEST(PageRangesTest, RefusesWhatNamesNoPage)
{
    for (const QStringView text :
         {u"", u" ", u",", u"1,", u"-", u"0", u"0-2", u"x", u"1-2-3", u"1.5", u"+1", u"7", u"7-", u"٣"})
        EXPECT_EQ(parsePageRanges(text, 3), std::nullopt) << text.toString().toStdString();
    EXPECT_EQ(parsePageRanges(u"1-", 0), std::nullopt);
}

} // namespace
} // namespace pdf
