// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdfview/TileCache.h"

#include <algorithm>
#include <utility>

namespace pdf {

TileCache::TileCache(qsizetype byteLimit)
    : m_images(byteLimit)
{}

void TileCache::insert(const Tile& tile, QImage image)
{
    const qsizetype bytes = image.sizeInBytes();
    m_outdated.remove(tile);
    m_images.insert(tile, new QImage(std::move(image)), bytes);
}

void TileCache::insertOutdated(const Tile& tile, QImage image)
{
    insert(tile, std::move(image));
    m_outdated.insert(tile);
}

void TileCache::clear()
{
    m_images.clear();
    m_outdated.clear();
}

void TileCache::outdate(int page, const std::function<bool(const Tile&)>& stays)
{
    for (const Tile& tile : m_images.keys()) {
        if (tile.page != page)
            continue;
        if (stays(tile))
            m_outdated.insert(tile);
        else
            m_images.remove(tile);
    }
}

bool TileCache::hasOutdated(int page) const
{
    return std::any_of(m_outdated.begin(), m_outdated.end(), [&](const Tile& tile) {
        return tile.page == page && m_images.contains(tile);
    });
}

} // namespace pdf
