// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/PageRanges.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace pdf {
namespace {

using testing::ElementsAre;
using testing::VariantWith;
using Reason = WrongPageRange::Reason;

/// The pages that the text names.
template <typename... Pages>
auto areOnly(Pages... pages)
{
    return VariantWith<std::vector<int>>(ElementsAre(pages...));
}

/// What the text is refused for, and the part of it that is named.
void expectRefused(QStringView text, int pageCount, QStringView part, Reason reason)
{
    const auto result = parsePageRanges(text, pageCount);
    const auto* wrong = std::get_if<WrongPageRange>(&result);
    ASSERT_TRUE(wrong) << text.toString().toStdString() << " is taken";
    EXPECT_EQ(wrong->part, part) << text.toString().toStdString();
    EXPECT_EQ(wrong->reason, reason) << text.toString().toStdString();
}

TEST(PageRangesTest, NamesSinglePagesAndRanges)
{
    EXPECT_THAT(parsePageRanges(u"1-3, 5, 8-", 10), areOnly(0, 1, 2, 4, 7, 8, 9));
    EXPECT_THAT(parsePageRanges(u"4", 10), areOnly(3));
    EXPECT_THAT(parsePageRanges(u"-2", 10), areOnly(0, 1));
}

TEST(PageRangesTest, KeepsTheOrderOfTheText)
{
    EXPECT_THAT(parsePageRanges(u"5,1-2", 10), areOnly(4, 0, 1));
    EXPECT_THAT(parsePageRanges(u"3-1", 10), areOnly(2, 1, 0));
    EXPECT_THAT(parsePageRanges(u"2, 2", 10), areOnly(1, 1));
}

TEST(PageRangesTest, TakesSpacesAndTheDashThatTypographersUse)
{
    EXPECT_THAT(parsePageRanges(u"  1 - 2 ,4 ", 10), areOnly(0, 1, 3));
    EXPECT_THAT(parsePageRanges(u"2\u20133", 10), areOnly(1, 2));
}

TEST(PageRangesTest, RefusesWhatGoesBeyondTheLastPageAndNamesIt)
{
    expectRefused(u"3-1, 99", 15, u"99", Reason::beyondLastPage);
    expectRefused(u"1, 14 - 16 ,3", 15, u"14 - 16", Reason::beyondLastPage);
    expectRefused(u"2-99999999999999999999", 3, u"2-99999999999999999999", Reason::beyondLastPage);
    expectRefused(u"9-2", 3, u"9-2", Reason::beyondLastPage);
    expectRefused(u"4-", 3, u"4-", Reason::beyondLastPage);
    expectRefused(u"1-", 0, u"1-", Reason::beyondLastPage);
}

TEST(PageRangesTest, RefusesWhatIsNoRangeAndNamesIt)
{
    for (const QStringView text : {u"", u"-", u"0", u"0-2", u"x", u"1-2-3", u"1.5", u"+1", u"٣"})
        expectRefused(text, 3, text, Reason::notARange);
    expectRefused(u" ", 3, u"", Reason::notARange);
    expectRefused(u"1,", 3, u"", Reason::notARange);
    expectRefused(u"1, two, 99", 3, u"two", Reason::notARange);
}

} // namespace
} // namespace pdf
