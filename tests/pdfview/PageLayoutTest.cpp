// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdfview/PageLayout.h"

#include <gtest/gtest.h>

#include <limits>

namespace pdf {
namespace {

PageLayout layoutOf(const std::vector<QSizeF>& sizes, double scale = 1.0, int gap = 10)
{
    PageLayout layout(static_cast<int>(sizes.size()));
    layout.setScale(scale);
    layout.setGap(gap);
    for (std::size_t i = 0; i < sizes.size(); ++i)
        layout.setPageSize(static_cast<int>(i), sizes[i]);
    return layout;
}

TEST(PageLayoutTest, StacksPagesWithGapsAround)
{
    const PageLayout layout = layoutOf({{100, 200}, {300, 50}, {100, 100}});
    EXPECT_EQ(layout.top(0), 10);
    EXPECT_EQ(layout.bottom(0), 210);
    EXPECT_EQ(layout.top(1), 220);
    EXPECT_EQ(layout.top(2), 280);
    EXPECT_EQ(layout.height(), 390);
    EXPECT_EQ(layout.width(), 320);
}

TEST(PageLayoutTest, HasNoSizeBeforeAPageIsKnown)
{
    PageLayout layout(3);
    layout.setGap(10);
    EXPECT_FALSE(layout.hasSizes());
    EXPECT_EQ(layout.height(), 0);
    EXPECT_EQ(layout.width(), 0);
}

TEST(PageLayoutTest, TakesTheFirstKnownSizeForAllUnknownPages)
{
    PageLayout layout(4);
    layout.setGap(10);
    layout.setPageSize(2, {100, 300});
    EXPECT_EQ(layout.pixelSize(0), QSize(100, 300));
    EXPECT_FALSE(layout.isKnown(0));
    EXPECT_TRUE(layout.isKnown(2));
    EXPECT_EQ(layout.height(), 10 + 4 * 310);
    layout.setPageSize(1, {100, 50});
    EXPECT_EQ(layout.top(2), 10 + 310 + 60) << "only the known page has changed";
    EXPECT_EQ(layout.height(), 10 + 3 * 310 + 60);
}

TEST(PageLayoutTest, TakesTheLatestSizeOfAPage)
{
    PageLayout layout = layoutOf({{100, 200}, {100, 200}});
    layout.setPageSize(0, {100, 20});
    EXPECT_EQ(layout.top(1), 40);
}

TEST(PageLayoutTest, RoundsPagesUpToWholePixels)
{
    const PageLayout layout = layoutOf({{99.2, 199.5}, {100, 100}}, 1.5);
    EXPECT_EQ(layout.pixelSize(0), QSize(149, 300));
    EXPECT_EQ(layout.top(1), 10 + 300 + 10);
}

TEST(PageLayoutTest, FindsThePageOfALine)
{
    const PageLayout layout = layoutOf({{100, 200}, {300, 50}, {100, 100}});
    EXPECT_EQ(layout.pageAt(0), 0) << "the gap before a page counts as the page's";
    EXPECT_EQ(layout.pageAt(209), 0);
    EXPECT_EQ(layout.pageAt(210), 1);
    EXPECT_EQ(layout.pageAt(269), 1);
    EXPECT_EQ(layout.pageAt(270), 2);
    EXPECT_EQ(layout.pageAt(100000), 2);
    EXPECT_EQ(PageLayout(0).pageAt(0), -1);
}

TEST(PageLayoutTest, FindsPagesAmongKnownAndUnknownOnes)
{
    PageLayout layout(20000);
    layout.setGap(12);
    for (int page = 0; page < 20000; page += 7)
        layout.setPageSize(page, {600, page % 2 ? 300.0 : 900.0});
    for (int page = 0; page < 20000; page += 13) {
        EXPECT_EQ(layout.pageAt(layout.top(page)), page);
        EXPECT_EQ(layout.pageAt(layout.bottom(page) - 1), page);
        EXPECT_EQ(layout.pageAt(layout.bottom(page)), std::min(page + 1, 19999));
    }
}

TEST(PageLayoutTest, LaysOutAsManyPagesAsADocumentMayClaim)
{
    PageLayout layout(std::numeric_limits<int>::max());
    layout.setGap(12);
    layout.setScale(10);
    layout.setPageSize(0, {612, 792});
    EXPECT_EQ(layout.top(2'000'000'000), 12 + 2'000'000'000LL * 7932);
    EXPECT_EQ(layout.pageAt(layout.top(2'000'000'000)), 2'000'000'000);
}

TEST(PageLayoutTest, CutsAbsurdSizes)
{
    const PageLayout layout = layoutOf({{1e12, 0.0}, {-5, 1e-9}});
    EXPECT_EQ(layout.pixelSize(0), QSize(20000, 1));
    EXPECT_EQ(layout.pixelSize(1), QSize(1, 1));
}

TEST(PageLayoutTest, IgnoresSizesOfPagesThatAreNotThere)
{
    PageLayout layout(2);
    layout.setPageSize(2, {100, 100});
    layout.setPageSize(-1, {100, 100});
    EXPECT_FALSE(layout.hasSizes());
}

} // namespace
} // namespace pdf
