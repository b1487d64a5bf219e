// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdfview/Tile.h"

#include <algorithm>

namespace pdf {
namespace {

constexpr double wholePageSide = 320.0;

} // namespace

QRect tileRect(const Tile& tile, QSize pagePixels)
{
    const QRect page(QPoint(0, 0), pagePixels);
    if (tile.isWholePage())
        return page;
    return page & QRect(tile.cell * tileSide, QSize(tileSide, tileSide));
}

std::vector<Tile> tilesIn(const QRect& area, int page, double scale, QSize pagePixels)
{
    const QRect inside = area & QRect(QPoint(0, 0), pagePixels);
    std::vector<Tile> tiles;
    if (inside.isEmpty())
        return tiles;
    for (int row = inside.top() / tileSide; row <= inside.bottom() / tileSide; ++row) {
        for (int column = inside.left() / tileSide; column <= inside.right() / tileSide; ++column)
            tiles.push_back({page, scale, QPoint(column, row)});
    }
    return tiles;
}

double wholePageScale(QSizeF pageSize)
{
    return wholePageSide / std::max({pageSize.width(), pageSize.height(), 1.0});
}

} // namespace pdf
