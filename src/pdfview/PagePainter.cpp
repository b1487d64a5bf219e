// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdfview/PagePainter.h"

#include "pdf/PDFDisplayList.h"

#include <QFontInfo>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace pdf {
namespace {

// Quiet on white paper, and still easy to read.
constexpr QColor failureColor(0x6E, 0x6E, 0x73);
// View points.
constexpr int failureMargin = 24;

QRect stretched(const QRect& rect, double x, double y)
{
    const QPoint from(
        static_cast<int>(std::lround(rect.left() * x)), static_cast<int>(std::lround(rect.top() * y)));
    const QPoint to(
        static_cast<int>(std::lround((rect.left() + rect.width()) * x)),
        static_cast<int>(std::lround((rect.top() + rect.height()) * y)));
    return {from, QSize(to.x() - from.x(), to.y() - from.y())};
}

} // namespace

PagePainter::PagePainter(
    const PageViewport& viewport, TileCache& cache, const std::map<int, QString>& failedPages,
    double fallbackScale)
    : m_viewport(viewport)
    , m_cache(cache)
    , m_failedPages(failedPages)
    , m_fallbackScale(fallbackScale)
{}

void PagePainter::paint(QPainter& painter, const QRect& exposed, const Look& look)
{
    painter.fillRect(exposed, look.surroundings);
    const auto pages = m_viewport.visiblePages();
    for (int page = pages.first; page <= pages.last; ++page)
        paintPage(painter, page, exposed, look);
}

void PagePainter::paintPage(QPainter& painter, int page, const QRect& exposed, const Look& look)
{
    const QRect rect = m_viewport.pageRect(page);
    painter.setPen(look.edge);
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(rect.adjusted(-1, -1, 0, 0));

    const QRect visible = rect & QRect(QPoint(0, 0), m_viewport.size());
    if (visible.isEmpty())
        return;
    const auto cells = tilesIn(visible.translated(-rect.topLeft()), page, m_viewport.scale(), rect.size());
    const bool isSharp =
        std::all_of(cells.begin(), cells.end(), [this](const Tile& tile) { return m_cache.contains(tile); });
    const auto failure = m_failedPages.find(page);
    if (!isSharp && failure != m_failedPages.end()) {
        paintFailure(painter, visible, failure->second, look);
        return;
    }
    if (!isSharp) {
        m_isSharp = false;
        painter.fillRect(visible, Qt::white);
        const bool isSubstituted = paintSubstitute(painter, page, visible);
        const bool isBegun = std::any_of(
            cells.begin(), cells.end(), [this](const Tile& tile) { return m_cache.contains(tile); });
        m_isAnythingMissing |= !isSubstituted && !isBegun;
    }
    for (const Tile& tile : cells) {
        const QRect place = tileRect(tile, rect.size()).translated(rect.topLeft());
        // A cell outside the exposed area is looked up all the same, so that it stays at hand.
        const QImage* image = m_cache.find(tile);
        if (image && place.intersects(exposed))
            painter.drawImage(place.topLeft(), *image);
    }
}

bool PagePainter::paintSubstitute(QPainter& painter, int page, const QRect& area)
{
    const QRect rect = m_viewport.pageRect(page);
    bool found = false;
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    if (const QImage* image = m_cache.find(Tile::wholePage(page))) {
        painter.setClipRect(area);
        painter.drawImage(rect, *image);
        painter.setClipping(false);
        found = true;
    }
    if (m_fallbackScale > 0.0 && m_fallbackScale != m_viewport.scale()) {
        const QSize size = pixelSize(m_viewport.layout().pageSize(page), m_fallbackScale);
        const double x = static_cast<double>(rect.width()) / size.width();
        const double y = static_cast<double>(rect.height()) / size.height();
        const QRect wanted = stretched(area.translated(-rect.topLeft()), 1.0 / x, 1.0 / y);
        painter.setClipRect(area);
        for (const Tile& tile : tilesIn(wanted.adjusted(-1, -1, 1, 1), page, m_fallbackScale, size)) {
            if (const QImage* image = m_cache.find(tile)) {
                painter.drawImage(stretched(tileRect(tile, size), x, y).translated(rect.topLeft()), *image);
                found = true;
            }
        }
        painter.setClipping(false);
    }
    painter.setRenderHint(QPainter::SmoothPixmapTransform, false);
    return found;
}

void PagePainter::paintFailure(QPainter& painter, const QRect& visible, const QString& text, const Look& look)
{
    painter.fillRect(visible, Qt::white);
    painter.setPen(failureColor);
    QFont font = painter.font();
    font.setPixelSize(std::max(1, qRound(QFontInfo(font).pixelSize() * look.fontScale)));
    painter.save();
    painter.setFont(font);
    painter.setClipRect(visible);
    // In the middle of what is visible, since the middle of the page may be far away.
    const int margin = std::min(qRound(failureMargin * look.fontScale), visible.width() / 8);
    painter.drawText(
        visible.adjusted(margin, margin, -margin, -margin), Qt::AlignCenter | Qt::TextWordWrap, text);
    painter.restore();
}

} // namespace pdf
