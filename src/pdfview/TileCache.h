// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "pdfview/Tile.h"

#include <QCache>
#include <QImage>
#include <QSet>

#include <functional>

namespace pdf {

/// The pictures at hand, up to a limit of bytes; those that were not asked for the longest make room.
class TileCache
{
public:
    explicit TileCache(qsizetype byteLimit);

    qsizetype byteLimit() const { return m_images.maxCost(); }
    void setByteLimit(qsizetype bytes) { m_images.setMaxCost(bytes); }
    qsizetype byteCount() const { return m_images.totalCost(); }

    /// A picture that alone is larger than the limit is not kept.
    void insert(const Tile& tile, QImage image);
    /// The same for a picture that shows what is no longer so: it is found, but not contained.
    void insertOutdated(const Tile& tile, QImage image);
    bool contains(const Tile& tile) const { return m_images.contains(tile) && !m_outdated.contains(tile); }
    /// The picture, which now counts as used, or null. Valid until the next insertion.
    const QImage* find(const Tile& tile) const { return m_images.object(tile); }
    void clear();

    /// Pictures of the page show what is no longer so. Those that are to stay are found until they are
    /// replaced, but the cache does not contain them; the others are forgotten.
    void outdate(int page, const std::function<bool(const Tile&)>& stays);
    /// True while pictures of the page wait to be replaced.
    bool hasOutdated(int page) const;

private:
    QCache<Tile, QImage> m_images;
    QSet<Tile> m_outdated;
};

} // namespace pdf
