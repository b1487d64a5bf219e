// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdfview/TilePlan.h"

#include <QSet>

#include <algorithm>

namespace pdf {
namespace {

/// The cells of the page in an area of the view; none while the page's size is a guess.
std::vector<Tile> cellsIn(const PageViewport& viewport, int page, const QRect& area)
{
    if (!viewport.layout().isKnown(page))
        return {};
    const QRect rect = viewport.pageRect(page);
    return tilesIn(area.translated(-rect.topLeft()), page, viewport.scale(), rect.size());
}

class Plan
{
public:
    Plan(const PageViewport& viewport, const std::function<bool(const Tile&)>& isAtHand, qsizetype room)
        : m_viewport(viewport)
        , m_isAtHand(isAtHand)
        , m_room(room)
    {}

    void addVisible(PageViewport::Range pages)
    {
        std::vector<Tile> cells;
        for (int page = pages.first; page <= pages.last; ++page) {
            const QRect view(QPoint(0, 0), m_viewport.size());
            const auto visible = cellsIn(m_viewport, page, view);
            if (std::none_of(visible.begin(), visible.end(), m_isAtHand))
                add(Tile::wholePage(page));
            cells.insert(cells.end(), visible.begin(), visible.end());
        }
        const QPoint middle(m_viewport.size().width() / 2, m_viewport.size().height() / 2);
        const auto distance = [&](const Tile& tile) {
            const QRect rect = tileRect(tile, m_viewport.layout().pixelSize(tile.page));
            return (rect.center() + m_viewport.pageRect(tile.page).topLeft() - middle).manhattanLength();
        };
        std::stable_sort(cells.begin(), cells.end(), [&](const Tile& a, const Tile& b) {
            return distance(a) < distance(b);
        });
        for (const Tile& tile : cells)
            add(tile);
    }

    /// What a view's height of scrolling would bring in.
    void addBeyond(ScrollDirection direction)
    {
        const int height = m_viewport.size().height();
        const QRect beyond(
            0, direction == ScrollDirection::down ? height : -height, m_viewport.size().width(), height);
        const auto pages = m_viewport.visiblePages();
        const int step = direction == ScrollDirection::down ? 1 : -1;
        for (int page = direction == ScrollDirection::down ? pages.last : pages.first;
             page >= 0 && page < m_viewport.layout().pageCount(); page += step) {
            const bool isNeighbour = page == pages.first - 1 || page == pages.last + 1;
            const auto cells = cellsIn(m_viewport, page, beyond);
            if (cells.empty() && !isNeighbour && (page < pages.first || page > pages.last))
                break;
            if (!m_viewport.layout().isKnown(page))
                add(Tile::wholePage(page));
            for (const Tile& tile : cells) {
                if (!m_planned.contains(tile) && bytesOf(tile) > m_room)
                    return;
                add(tile);
            }
        }
    }

    std::vector<Tile> take() { return std::move(m_tiles); }

private:
    /// A cell at the edge of the view is both visible and beyond it; it is named once.
    void add(const Tile& tile)
    {
        if (m_planned.contains(tile))
            return;
        m_planned.insert(tile);
        m_room -= bytesOf(tile);
        if (!m_isAtHand(tile))
            m_tiles.push_back(tile);
    }

    qsizetype bytesOf(const Tile& tile) const
    {
        if (tile.isWholePage())
            return 0;
        const QRect rect = tileRect(tile, m_viewport.layout().pixelSize(tile.page));
        return qsizetype{4} * rect.width() * rect.height();
    }

    const PageViewport& m_viewport;
    const std::function<bool(const Tile&)>& m_isAtHand;
    /// What is left of it.
    qsizetype m_room;
    /// Whether they are at hand or not.
    QSet<Tile> m_planned;
    std::vector<Tile> m_tiles;
};

} // namespace

std::vector<Tile> planTiles(
    const PageViewport& viewport, ScrollDirection direction, const std::function<bool(const Tile&)>& isAtHand,
    qsizetype room)
{
    Plan plan(viewport, isAtHand, room);
    const auto pages = viewport.visiblePages();
    if (pages.last < pages.first) {
        // Nothing can be laid out before one size is known.
        if (viewport.layout().pageCount() > 0 && !viewport.layout().hasSizes())
            return {Tile::wholePage(0)};
        return {};
    }
    plan.addVisible(pages);
    plan.addBeyond(direction);
    plan.addBeyond(direction == ScrollDirection::down ? ScrollDirection::up : ScrollDirection::down);
    return plan.take();
}

bool isSharp(const PageViewport& viewport, const std::function<bool(const Tile&)>& isAtHand)
{
    const QRect view(QPoint(0, 0), viewport.size());
    const auto pages = viewport.visiblePages();
    for (int page = pages.first; page <= pages.last; ++page) {
        const auto cells = cellsIn(viewport, page, view);
        if (!viewport.layout().isKnown(page) || !std::all_of(cells.begin(), cells.end(), isAtHand))
            return false;
    }
    return viewport.layout().pageCount() == 0 || viewport.layout().hasSizes();
}

} // namespace pdf
