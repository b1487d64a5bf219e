// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdfview/TextRevealer.h"

#include "pdf/TextLayer.h"
#include "pdfview/PDFView.h"
#include "pdfview/PageReader.h"
#include "pdfview/ScrollAnimation.h"

#include <algorithm>
#include <cmath>

namespace pdf {
namespace {

// View points.
constexpr double littleRoom = 24.0;
// Of the view.
constexpr double muchRoom = 0.25;

// What is further away than so many heights of the view is not scrolled to, since the eye could not follow.
constexpr double furthest = 2.0;

// While pages are read they find their size, and what lies beyond them moves on. The view follows that a few
// times and then lets it be.
constexpr int mostMoves = 3;

} // namespace

TextRevealer::TextRevealer(PDFView& view, PageReader& reader, ScrollAnimation& scrolling)
    : m_view(view)
    , m_reader(reader)
    , m_scrolling(scrolling)
{
    m_end.setSingleShot(true);
    m_end.setInterval(0);
    connect(&m_end, &QTimer::timeout, this, &TextRevealer::stop);
    connect(&view, &PDFView::documentChanged, this, &TextRevealer::stop);
    connect(&view, &PDFView::pagesMoved, this, &TextRevealer::proceed);
    connect(&reader, &PageReader::pageRead, this, &TextRevealer::proceed);
    connect(&scrolling, &ScrollAnimation::cameToRest, this, &TextRevealer::proceed);
}

void TextRevealer::reveal(int page, TextRange range, Room room)
{
    if (page < 0 || page >= m_view.pageCount())
        return;
    if (isUnderWay() && m_goal->page == page && m_goal->range == range)
        return;
    m_scrolling.stop();
    const auto visible = m_view.pageViewport().visiblePages();
    const bool isFar = page < visible.first || page > visible.last;
    if (isFar && !(m_reader.page(page) && m_view.pageToView(page))) {
        stop();
        m_view.goToPage(page);
    }
    m_end.stop();
    m_goal = Goal{page, range, room, isFar && !m_reader.page(page), 0, false};
    m_reader.hold(this, {page});
    proceed();
}

void TextRevealer::stop()
{
    m_end.stop();
    if (!m_goal)
        return;
    m_goal.reset();
    m_reader.hold(this, {});
}

void TextRevealer::proceed()
{
    if (!isUnderWay() || m_scrolling.isRunning())
        return;
    const auto place = this->place();
    if (!place)
        return;
    const QPointF way = place->isNull() ? QPointF() : wayTo(*place);
    if (!way.isNull() && m_goal->moves < mostMoves) {
        ++m_goal->moves;
        move(way);
        return;
    }
    m_goal->isReached = true;
    m_end.start();
    m_view.setCurrentPage(m_goal->page);
}

std::optional<QRectF> TextRevealer::place() const
{
    const PageMatter* matter = m_reader.page(m_goal->page);
    const auto toView = m_view.pageToView(m_goal->page);
    if (!matter || !toView)
        return std::nullopt;
    if (!matter->text)
        return QRectF();
    const TextRange range = matter->text->clipped(m_goal->range);
    const auto shapes = matter->text->outlines(range);
    if (shapes.empty()) {
        const QLineF caret = toView->map(matter->text->caret(range.location));
        return QRectF(caret.p1(), caret.p2()).normalized();
    }
    QRectF all;
    for (const QPolygonF& shape : shapes)
        all |= toView->map(shape).boundingRect();
    const QSize size = m_view.viewport()->size();
    return all.width() <= size.width() && all.height() <= size.height()
               ? all
               : toView->map(shapes.front()).boundingRect();
}

QPointF TextRevealer::wayTo(const QRectF& place) const
{
    const QSizeF size = m_view.viewport()->size();
    const QPointF barely = m_view.distanceToReveal(place, {0, 0});
    const auto room = [&](double extent, double taken) {
        const double wanted = m_goal->room == Room::much ? muchRoom * extent : littleRoom;
        return std::clamp((extent - taken) / 2, 0.0, wanted);
    };
    const QPointF way = m_view.distanceToReveal(
        place, {room(size.width(), place.width()), room(size.height(), place.height())});
    // In a direction in which it is in view nothing moves.
    return {barely.x() == 0 ? 0 : way.x(), barely.y() == 0 ? 0 : way.y()};
}

void TextRevealer::move(QPointF distance)
{
    const bool isNear = std::abs(distance.y()) <= furthest * m_view.viewport()->height() &&
                        std::abs(distance.x()) <= furthest * m_view.viewport()->width();
    const QPointF pixels = distance * m_view.devicePixelRatioF();
    if (isNear && !m_goal->isFar && m_view.isAnimated())
        m_scrolling.add(pixels);
    else
        m_scrolling.jump(pixels);
}

} // namespace pdf
