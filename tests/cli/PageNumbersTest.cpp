// SPDX-License-Identifier: AGPL-3.0-or-later
#include "cli/PageNumbers.h"

#include "support/Printing.h"

#include <gtest/gtest.h>

namespace quillo::cli {
namespace {

TEST(PageNumbersTest, AreCountedFromOneAndJoinedToRanges)
{
    EXPECT_EQ(pageNumbers({0}), QStringLiteral("1"));
    EXPECT_EQ(pageNumbers({0, 1, 2, 4, 7, 8}), QStringLiteral("1-3, 5, 8-9"));
}

TEST(PageNumbersTest, EndWithTheNumberOfThoseThatAreLeftOut)
{
    std::vector<std::int64_t> pages;
    for (std::int64_t page = 0; page < 1000; page += 2)
        pages.push_back(page);
    const QString text = pageNumbers(pages);
    EXPECT_TRUE(text.startsWith(QStringLiteral("1, 3, 5, "))) << text.toStdString();
    EXPECT_TRUE(text.endsWith(QStringLiteral("97, 99 and 450 more"))) << text.toStdString();
}

} // namespace
} // namespace quillo::cli
