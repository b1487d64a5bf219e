// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdfview/PageViewport.h"

#include <algorithm>
#include <cmath>

namespace pdf {
namespace {

struct PartOfLength
{
    double part = 0.0;
    qint64 rest = 0;
};

PartOfLength split(qint64 position, int length)
{
    const qint64 inside = std::clamp<qint64>(position, 0, length);
    return {static_cast<double>(inside) / std::max(length, 1), position - inside};
}

qint64 join(double part, qint64 rest, int length)
{
    return std::llround(part * length) + rest;
}

} // namespace

PageViewport::PageViewport(int pageCount)
    : m_layout(pageCount)
{
    if (pageCount > 0)
        m_target = Target{};
}

void PageViewport::setSize(QSize size)
{
    auto anchor = m_size.isEmpty() ? std::nullopt : anchorAt(QPoint(m_size.width() / 2, 0));
    m_size = size;
    if (anchor)
        anchor->point.setX(size.width() / 2);
    settle(anchor);
}

void PageViewport::setGap(int gap)
{
    const auto anchor = mainAnchor();
    m_layout.setGap(gap);
    settle(anchor);
}

void PageViewport::setScale(double scale, QPoint fixedPoint)
{
    const auto anchor = anchorAt(fixedPoint);
    m_layout.setScale(scale);
    m_target.reset();
    settle(anchor);
}

void PageViewport::setScale(double scale)
{
    auto anchor = anchorAt(QPoint(m_size.width() / 2, m_size.height() / 2));
    if (anchor && anchor->page != currentPage())
        anchor = mainAnchor();
    m_layout.setScale(scale);
    settle(anchor);
}

void PageViewport::setPageSize(int page, QSizeF points)
{
    const auto anchor = mainAnchor();
    m_layout.setPageSize(page, points);
    settle(anchor);
}

qint64 PageViewport::minimumX() const
{
    return visibleRangeAcross().minimum;
}

qint64 PageViewport::maximumX() const
{
    return visibleRangeAcross().maximum;
}

qint64 PageViewport::maximumY() const
{
    return std::max<qint64>(m_layout.height() - m_size.height(), 0);
}

bool PageViewport::isWiderThanView() const
{
    return m_layout.width() > m_size.width();
}

void PageViewport::scrollTo(qint64 x, qint64 y)
{
    const qint64 oldX = m_x;
    const qint64 oldY = m_y;
    m_x = x;
    m_y = y;
    clamp();
    if (m_y != oldY)
        m_target.reset();
    else if (m_target && m_x != oldX)
        m_target->place = Target::Place::asItStands;
}

void PageViewport::goToPage(int page)
{
    if (page < 0 || page >= m_layout.pageCount())
        return;
    m_target = Target{page, Target::Place::top};
    moveToTarget();
}

void PageViewport::goToEnd()
{
    if (m_layout.pageCount() == 0)
        return;
    m_target = Target{m_layout.pageCount() - 1, Target::Place::end};
    moveToTarget();
}

void PageViewport::bringAcross(int page)
{
    const Range visible = visiblePages();
    if (page < visible.first || page > visible.last)
        return;
    const RangeAcross range = rangeAcross(page);
    m_x = std::clamp(m_x, range.minimum, range.maximum);
}

void PageViewport::setCurrentPage(int page)
{
    if (page >= 0 && page < m_layout.pageCount())
        m_target = Target{page, Target::Place::asItStands};
}

int PageViewport::currentPage() const
{
    if (m_layout.pageCount() == 0)
        return -1;
    const Range range = visiblePages();
    if (m_target && (m_target->place != Target::Place::asItStands ||
                     (m_target->page >= range.first && m_target->page <= range.last)))
        return m_target->page;
    int best = range.first;
    double bestPart = -1.0;
    for (int page = range.first; page <= range.last; ++page) {
        const double part = visiblePart(page);
        if (part > bestPart) {
            best = page;
            bestPart = part;
        }
    }
    return best;
}

PageViewport::Range PageViewport::visiblePages() const
{
    if (!m_layout.hasSizes() || m_size.isEmpty())
        return {};
    Range range{m_layout.pageAt(m_y), 0};
    range.last = range.first;
    const qint64 end = m_y + m_size.height();
    while (range.last + 1 < m_layout.pageCount() && m_layout.top(range.last + 1) < end)
        ++range.last;
    return range;
}

QRect PageViewport::pageRect(int page) const
{
    const QPoint corner(
        static_cast<int>(pageLeft(page) - m_x), static_cast<int>(m_layout.top(page) - m_y + marginAbove()));
    return {corner, m_layout.pixelSize(page)};
}

std::optional<PageViewport::Anchor> PageViewport::anchorAt(QPoint viewPoint) const
{
    if (!m_layout.hasSizes())
        return std::nullopt;
    const int page = m_layout.pageAt(m_y + viewPoint.y() - marginAbove());
    const QRect rect = pageRect(page);
    const PartOfLength x = split(viewPoint.x() - rect.x(), rect.width());
    const PartOfLength y = split(viewPoint.y() - rect.y(), rect.height());
    return Anchor{page, x.part, y.part, x.rest, y.rest, viewPoint};
}

std::optional<PageViewport::Anchor> PageViewport::mainAnchor() const
{
    const int page = currentPage();
    if (page < 0 || !m_layout.hasSizes())
        return std::nullopt;
    const QRect rect = pageRect(page);
    return anchorAt(QPoint(m_size.width() / 2, std::clamp(rect.top(), 0, std::max(m_size.height() - 1, 0))));
}

void PageViewport::settle(const std::optional<Anchor>& anchor)
{
    if (anchor) {
        const QSize size = m_layout.pixelSize(anchor->page);
        m_x = pageLeft(anchor->page) + join(anchor->partX, anchor->restX, size.width()) - anchor->point.x();
        m_y = m_layout.top(anchor->page) + join(anchor->partY, anchor->restY, size.height()) -
              anchor->point.y();
    } else {
        m_x = (contentWidth() - m_size.width()) / 2;
    }
    clamp();
    moveToTarget();
}

void PageViewport::clamp()
{
    m_y = std::clamp<qint64>(m_y, 0, maximumY());
    // Only then is it certain which pages are visible.
    const RangeAcross range = visibleRangeAcross();
    m_x = std::clamp(m_x, range.minimum, range.maximum);
}

PageViewport::RangeAcross PageViewport::rangeAcross(int page) const
{
    const qint64 left = pageLeft(page);
    const qint64 width = m_layout.pixelSize(page).width();
    const qint64 room = m_size.width() - width;
    if (room >= 2 * m_layout.gap())
        return {left - room / 2, left - room / 2};
    return {left - m_layout.gap(), left + m_layout.gap() - room};
}

PageViewport::RangeAcross PageViewport::visibleRangeAcross() const
{
    const Range visible = visiblePages();
    if (visible.last < visible.first)
        return {};
    int widest = visible.first;
    for (int page = visible.first; page <= visible.last; ++page) {
        if (m_layout.pixelSize(page).width() > m_layout.pixelSize(widest).width())
            widest = page;
    }
    return rangeAcross(widest);
}

void PageViewport::moveToTarget()
{
    if (!m_target || m_target->place == Target::Place::asItStands || !m_layout.hasSizes())
        return;
    m_y = m_target->place == Target::Place::end ? maximumY() : m_layout.top(m_target->page) - m_layout.gap();
    clamp();
    bringAcross(m_target->page);
}

qint64 PageViewport::marginAbove() const
{
    return std::max<qint64>(m_size.height() - m_layout.height(), 0) / 2;
}

qint64 PageViewport::contentWidth() const
{
    return std::max(m_layout.width(), m_size.width());
}

qint64 PageViewport::pageLeft(int page) const
{
    return (contentWidth() - m_layout.pixelSize(page).width()) / 2;
}

double PageViewport::visiblePart(int page) const
{
    const QRect rect = pageRect(page);
    const QRect visible = rect & QRect(QPoint(0, 0), m_size);
    const int most = std::min(rect.height(), m_size.height());
    return most > 0 ? static_cast<double>(std::max(visible.height(), 0)) / most : 0.0;
}

} // namespace pdf
