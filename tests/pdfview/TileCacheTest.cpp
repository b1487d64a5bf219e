// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdfview/TileCache.h"

#include <gtest/gtest.h>

namespace pdf {
namespace {

QImage kilobyte()
{
    return {16, 16, QImage::Format_RGB32};
}

Tile cell(int column)
{
    return {0, 1.0, QPoint(column, 0)};
}

TEST(TileCacheTest, ForgetsWhatWasNotAskedForTheLongest)
{
    TileCache cache(qsizetype(3) * 1024);
    for (int column = 0; column < 3; ++column)
        cache.insert(cell(column), kilobyte());
    EXPECT_NE(cache.find(cell(0)), nullptr);
    cache.insert(cell(3), kilobyte());
    EXPECT_TRUE(cache.contains(cell(0)));
    EXPECT_FALSE(cache.contains(cell(1)));
    EXPECT_TRUE(cache.contains(cell(3)));
    EXPECT_EQ(cache.byteCount(), 3 * 1024);
}

TEST(TileCacheTest, KeepsNothingThatIsLargerThanItself)
{
    TileCache cache(1000);
    cache.insert(cell(0), kilobyte());
    EXPECT_FALSE(cache.contains(cell(0)));
    EXPECT_EQ(cache.byteCount(), 0);
}

TEST(TileCacheTest, ShrinksToANewLimit)
{
    TileCache cache(qsizetype(4) * 1024);
    for (int column = 0; column < 4; ++column)
        cache.insert(cell(column), kilobyte());
    cache.setByteLimit(qsizetype(2) * 1024);
    EXPECT_LE(cache.byteCount(), 2 * 1024);
    EXPECT_TRUE(cache.contains(cell(3)));
}

TEST(TileCacheTest, TellsScalesApart)
{
    TileCache cache(qsizetype(4) * 1024);
    cache.insert({0, 1.0, QPoint(0, 0)}, kilobyte());
    EXPECT_FALSE(cache.contains({0, 1.5, QPoint(0, 0)}));
    EXPECT_FALSE(cache.contains(Tile::wholePage(0)));
}

TEST(TileCacheTest, AnOutdatedPictureIsFoundButNotAtHandUntilItIsReplaced)
{
    TileCache cache(1 << 20);
    const Tile first{0, 1.0, {0, 0}};
    const Tile second{0, 1.0, {1, 0}};
    const Tile other{1, 1.0, {0, 0}};
    for (const Tile& tile : {first, second, other})
        cache.insert(tile, QImage(4, 4, QImage::Format_RGB32));
    cache.outdate(0, [&](const Tile& tile) { return tile == first; });
    EXPECT_NE(cache.find(first), nullptr);
    EXPECT_FALSE(cache.contains(first));
    EXPECT_EQ(cache.find(second), nullptr);
    EXPECT_TRUE(cache.contains(other));
    EXPECT_TRUE(cache.hasOutdated(0));
    EXPECT_FALSE(cache.hasOutdated(1));
    cache.insertOutdated(first, QImage(8, 8, QImage::Format_RGB32));
    EXPECT_EQ(cache.find(first)->size(), QSize(8, 8));
    EXPECT_FALSE(cache.contains(first));
    EXPECT_TRUE(cache.hasOutdated(0));
    cache.insert(first, QImage(4, 4, QImage::Format_RGB32));
    EXPECT_TRUE(cache.contains(first));
    EXPECT_FALSE(cache.hasOutdated(0));
}

} // namespace
} // namespace pdf
