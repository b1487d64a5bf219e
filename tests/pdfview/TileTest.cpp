// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdfview/Tile.h"

#include <gtest/gtest.h>

namespace pdf {
namespace {

TEST(TileTest, CellsCoverThePageWithoutOverlap)
{
    const QSize page(1300, 700);
    qint64 pixels = 0;
    const auto cells = tilesIn(QRect(QPoint(0, 0), page), 3, 1.0, page);
    EXPECT_EQ(cells.size(), 6U);
    for (const Tile& tile : cells) {
        const QRect rect = tileRect(tile, page);
        pixels += qint64(rect.width()) * rect.height();
        EXPECT_EQ(tile.page, 3);
    }
    EXPECT_EQ(pixels, 1300 * 700);
    EXPECT_EQ(tileRect(cells.back(), page), QRect(1024, 512, 276, 188));
}

TEST(TileTest, OnlyCellsThatTouchTheAreaAreNamed)
{
    const auto cells = tilesIn({600, 510, 100, 3}, 0, 1.0, {2000, 2000});
    ASSERT_EQ(cells.size(), 2U);
    EXPECT_EQ(cells[0].cell, QPoint(1, 0));
    EXPECT_EQ(cells[1].cell, QPoint(1, 1));
    EXPECT_TRUE(tilesIn({3000, 0, 10, 10}, 0, 1.0, {2000, 2000}).empty());
}

TEST(TileTest, TheSmallPictureOfAPageIsSmallWhateverThePage)
{
    EXPECT_DOUBLE_EQ(wholePageScale({640, 320}), 0.5);
    EXPECT_DOUBLE_EQ(wholePageScale({100, 14400}) * 14400, 320);
    EXPECT_EQ(tileRect(Tile::wholePage(0), {226, 320}), QRect(0, 0, 226, 320));
}

} // namespace
} // namespace pdf
