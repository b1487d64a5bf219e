// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <QHashFunctions>
#include <QPoint>
#include <QRect>
#include <QSize>
#include <QSizeF>

#include <vector>

namespace pdf {

/// Names one picture of a part of a page: a square cell of the page drawn at a scale, or the whole page drawn
/// small, which is at hand long before the cells of a heavy page are.
struct Tile
{
    int page = 0;
    /// Device pixels per point; 0 for the small picture of the whole page.
    double scale = 0.0;
    /// Column and row.
    QPoint cell;

    static Tile wholePage(int page) { return {page, 0.0, QPoint()}; }
    bool isWholePage() const { return scale == 0.0; }

    friend bool operator==(const Tile&, const Tile&) = default;
};

inline size_t qHash(const Tile& tile, size_t seed = 0)
{
    return qHashMulti(seed, tile.page, tile.scale, tile.cell.x(), tile.cell.y());
}

/// Side of a cell in device pixels.
constexpr int tileSide = 512;

/// The pixels of the page, drawn at the tile's scale, that the tile covers.
QRect tileRect(const Tile& tile, QSize pagePixels);

/// The cells that touch the area (pixels of the page drawn at the scale), row by row.
std::vector<Tile> tilesIn(const QRect& area, int page, double scale, QSize pagePixels);

/// The scale of the small picture of a page of this size in points.
double wholePageScale(QSizeF pageSize);

} // namespace pdf
