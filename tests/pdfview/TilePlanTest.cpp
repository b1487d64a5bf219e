// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdfview/TilePlan.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace pdf {
namespace {

/// Ten known pages of 600 by 1000 in a view of 700 by 900.
PageViewport knownPages()
{
    PageViewport viewport(10);
    viewport.setGap(10);
    viewport.setSize({700, 900});
    for (int page = 0; page < 10; ++page)
        viewport.setPageSize(page, {600, 1000});
    return viewport;
}

const auto nothingAtHand = [](const Tile&) { return false; };
constexpr qsizetype plenty = qsizetype{1} << 30;

std::vector<int> pagesOf(const std::vector<Tile>& tiles)
{
    std::vector<int> pages;
    for (const Tile& tile : tiles) {
        if (std::find(pages.begin(), pages.end(), tile.page) == pages.end())
            pages.push_back(tile.page);
    }
    return pages;
}

TEST(TilePlanTest, WantsASmallPictureFirstOfAPageOfWhichThereIsNothing)
{
    const auto plan = planTiles(knownPages(), ScrollDirection::down, nothingAtHand, plenty);
    ASSERT_FALSE(plan.empty());
    EXPECT_EQ(plan[0], Tile::wholePage(0));
    EXPECT_FALSE(plan[1].isWholePage());
}

TEST(TilePlanTest, WantsNoSmallPictureOfAPageThatIsPartlyThere)
{
    const auto viewport = knownPages();
    const auto isFirstCell = [](const Tile& tile) {
        return !tile.isWholePage() && tile.page == 0 && tile.cell == QPoint(0, 0);
    };
    const auto plan = planTiles(viewport, ScrollDirection::down, isFirstCell, plenty);
    EXPECT_EQ(std::count(plan.begin(), plan.end(), Tile::wholePage(0)), 0);
}

TEST(TilePlanTest, WantsVisibleCellsFromTheMiddleOutwards)
{
    auto viewport = knownPages();
    viewport.scrollTo(0, viewport.layout().top(4) + 60);
    const auto plan = planTiles(viewport, ScrollDirection::down, nothingAtHand, plenty);
    ASSERT_GE(plan.size(), 5U);
    // The page is 600 wide, so its left cells are nearer to the middle than its narrow right ones; the middle
    // is 510 below the page's top, and the lower cells are a little shorter than the upper ones.
    EXPECT_EQ(plan[1], (Tile{4, 1.0, QPoint(0, 1)}));
    EXPECT_EQ(plan[2], (Tile{4, 1.0, QPoint(0, 0)}));
    EXPECT_EQ(plan[3], (Tile{4, 1.0, QPoint(1, 1)}));
    EXPECT_EQ(plan[4], (Tile{4, 1.0, QPoint(1, 0)}));
}

TEST(TilePlanTest, WantsThePageAheadBeforeThePageBehind)
{
    auto viewport = knownPages();
    viewport.scrollTo(0, viewport.layout().top(4) + 20);
    EXPECT_EQ(
        pagesOf(planTiles(viewport, ScrollDirection::down, nothingAtHand, plenty)),
        (std::vector<int>{4, 5, 3}));
    EXPECT_EQ(
        pagesOf(planTiles(viewport, ScrollDirection::up, nothingAtHand, plenty)),
        (std::vector<int>{4, 3, 5}));
}

TEST(TilePlanTest, NamesNothingTwice)
{
    auto viewport = knownPages();
    viewport.scrollTo(0, viewport.layout().top(4) + 300);
    const auto plan = planTiles(viewport, ScrollDirection::down, nothingAtHand, plenty);
    for (const Tile& tile : plan)
        EXPECT_EQ(std::count(plan.begin(), plan.end(), tile), 1);
}

qsizetype bytesOf(const std::vector<Tile>& tiles)
{
    qsizetype bytes = 0;
    for (const Tile& tile : tiles) {
        const QRect rect = tile.isWholePage() ? QRect() : tileRect(tile, {600, 1000});
        bytes += qsizetype{4} * rect.width() * rect.height();
    }
    return bytes;
}

TEST(TilePlanTest, WantsNoMoreAheadThanThereIsRoomFor)
{
    auto viewport = knownPages();
    viewport.scrollTo(0, viewport.layout().top(4) + 20);
    const auto all = planTiles(viewport, ScrollDirection::down, nothingAtHand, plenty);
    const qsizetype room = bytesOf(all) - 1;
    const auto less = planTiles(viewport, ScrollDirection::down, nothingAtHand, room);
    EXPECT_LT(less.size(), all.size());
    EXPECT_LE(bytesOf(less), room);
    EXPECT_TRUE(std::equal(less.begin(), less.end(), all.begin())) << "the least urgent ones are left out";

    // What is at hand takes room as well.
    const auto isVisible = [](const Tile& tile) { return tile.page == 4; };
    EXPECT_TRUE(planTiles(viewport, ScrollDirection::down, isVisible, 600 * 1000 * 4).empty());
}

TEST(TilePlanTest, WantsAllThatIsVisibleHoweverLittleRoomThereIs)
{
    const auto viewport = knownPages();
    auto plan = planTiles(viewport, ScrollDirection::down, nothingAtHand, 0);
    std::erase_if(plan, [](const Tile& tile) { return tile.isWholePage(); });
    EXPECT_EQ(plan.size(), 4U);
    EXPECT_EQ(pagesOf(plan), (std::vector<int>{0}));
}

TEST(TilePlanTest, LeavesOutWhatIsAtHand)
{
    const auto isOnFirstPage = [](const Tile& tile) { return tile.page == 0; };
    const auto plan = planTiles(knownPages(), ScrollDirection::down, isOnFirstPage, plenty);
    EXPECT_EQ(pagesOf(plan), (std::vector<int>{1}));
}

TEST(TilePlanTest, WantsOnlyTheFirstPageBeforeAnySizeIsKnown)
{
    PageViewport viewport(10);
    viewport.setSize({700, 900});
    EXPECT_EQ(
        planTiles(viewport, ScrollDirection::down, nothingAtHand, plenty),
        (std::vector<Tile>{Tile::wholePage(0)}));
    EXPECT_TRUE(planTiles(PageViewport(0), ScrollDirection::down, nothingAtHand, plenty).empty());
}

TEST(TilePlanTest, WantsSmallPicturesOfPagesWhoseSizeIsUnknown)
{
    PageViewport viewport(10);
    viewport.setGap(10);
    viewport.setSize({700, 900});
    viewport.setPageSize(0, {600, 1000});
    viewport.goToPage(5);
    const auto plan = planTiles(viewport, ScrollDirection::down, nothingAtHand, plenty);
    EXPECT_EQ(pagesOf(plan), (std::vector<int>{5, 6, 4}));
    for (const Tile& tile : plan)
        EXPECT_TRUE(tile.isWholePage()) << "cells of a guessed size would be drawn in vain";
}

TEST(TilePlanTest, StaysSmallHoweverManyPagesThereAre)
{
    PageViewport viewport(20000);
    viewport.setGap(10);
    viewport.setSize({700, 900});
    viewport.setPageSize(0, {600, 1000});
    viewport.goToPage(12345);
    EXPECT_LE(planTiles(viewport, ScrollDirection::down, nothingAtHand, plenty).size(), 4U);
}

TEST(TilePlanTest, IsSharpWhenAllThatIsVisibleIsAtHandAtItsSize)
{
    const auto viewport = knownPages();
    const auto visible = [](const Tile& tile) { return tile.page == 0 && tile.cell.y() < 2; };
    EXPECT_TRUE(isSharp(viewport, visible));
    EXPECT_FALSE(isSharp(viewport, nothingAtHand));
    EXPECT_FALSE(
        isSharp(viewport, [&](const Tile& tile) { return visible(tile) && tile.cell != QPoint(1, 1); }));
}

TEST(TilePlanTest, IsNotSharpWhereTheSizeOfAVisiblePageIsAGuess)
{
    PageViewport viewport(2);
    viewport.setSize({700, 900});
    const auto everythingAtHand = [](const Tile&) { return true; };
    EXPECT_FALSE(isSharp(viewport, everythingAtHand));
    viewport.setPageSize(0, {600, 500});
    EXPECT_FALSE(isSharp(viewport, everythingAtHand));
    viewport.setPageSize(1, {600, 500});
    EXPECT_TRUE(isSharp(viewport, everythingAtHand));
    EXPECT_TRUE(isSharp(PageViewport(0), nothingAtHand));
}

} // namespace
} // namespace pdf
