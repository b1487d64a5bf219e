// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdfview/PDFView.h"
#include "pdfview/ScrollAnimation.h"
#include "pdfview/TextRevealer.h"

#include <QRectF>
#include <QStyle>

#include <algorithm>
#include <cmath>
#include <utility>

// Going to places in the document.
namespace pdf {
namespace {

// View points between a place that was gone to and the upper left of the view, the same as around the pages.
constexpr double arrivalMargin = 12.0;

// Places to come back to.
constexpr std::size_t longestHistory = 100;

/// How far one has to go for the range to lie within the room; its start has precedence.
double distanceInto(double start, double end, double roomStart, double roomEnd)
{
    if (start < roomStart)
        return start - roomStart;
    return end > roomEnd ? std::min(end - roomEnd, start - roomStart) : 0.0;
}

} // namespace

void PDFView::goToPage(int page)
{
    // It comes into view together with the text that is being brought there.
    if (m_revealer->isBringing(page))
        return;
    stopScrolling();
    m_arrival.reset();
    m_viewport.goToPage(page);
    follow();
}

void PDFView::goToEnd()
{
    stopScrolling();
    m_arrival.reset();
    m_viewport.goToEnd();
    follow();
}

void PDFView::goToNextPage()
{
    goToPage(m_currentPage + 1);
}

void PDFView::goToPreviousPage()
{
    goToPage(m_currentPage - 1);
}

void PDFView::goTo(const PDFDestination& destination)
{
    if (destination.zoom)
        setScaleFactor(std::clamp(*destination.zoom, smallestScaleFactor, largestScaleFactor));
    goToPage(destination.page);
    m_arrival = destination;
    arrive();
}

void PDFView::arrive()
{
    const auto toView = m_arrival ? pageToView(m_arrival->page) : std::nullopt;
    if (!toView)
        return;
    const PDFDestination destination = *std::exchange(m_arrival, std::nullopt);
    const QPointF point = toView->map(QPointF(destination.left.value_or(0.0), destination.top.value_or(0.0)));
    // On a page that stands on its side the left of the text is above or below.
    const bool isOnSide = std::abs(toView->m12()) > std::abs(toView->m11());
    const QPointF distance(
        (isOnSide ? destination.top : destination.left) ? point.x() - arrivalMargin : 0.0,
        (isOnSide ? destination.left : destination.top) ? point.y() - arrivalMargin : 0.0);
    if (!distance.isNull())
        scrollBy(distance);
}

std::optional<PDFDestination> PDFView::currentDestination() const
{
    if (m_arrival)
        return m_arrival;
    const QPointF corner(arrivalMargin, arrivalMargin);
    const int index = page(corner, true);
    if (index < 0)
        return std::nullopt;
    const auto toView = pageToView(index);
    if (!toView)
        return PDFDestination{index, std::nullopt, std::nullopt, std::nullopt};
    const QPointF point = toView->inverted().map(corner);
    return PDFDestination{index, point.x(), point.y(), std::nullopt};
}

void PDFView::follow(const PDFDestination& destination)
{
    remember(m_placesBefore);
    m_placesAfter.clear();
    goTo(destination);
}

void PDFView::goBack()
{
    goAlong(m_placesBefore, m_placesAfter);
}

void PDFView::goForward()
{
    goAlong(m_placesAfter, m_placesBefore);
}

void PDFView::goAlong(std::vector<PDFDestination>& way, std::vector<PDFDestination>& wayBack)
{
    if (way.empty())
        return;
    const PDFDestination destination = way.back();
    way.pop_back();
    remember(wayBack);
    goTo(destination);
}

void PDFView::remember(std::vector<PDFDestination>& places) const
{
    const auto place = currentDestination();
    if (!place)
        return;
    if (places.size() == longestHistory)
        places.erase(places.begin());
    places.push_back(*place);
}

void PDFView::setCurrentPage(int page)
{
    m_viewport.setCurrentPage(page);
    updateCurrentPage();
}

void PDFView::reveal(const QRectF& rect, double margin)
{
    const QPointF distance = distanceToReveal(rect, {margin, margin});
    if (!distance.isNull())
        scrollBy(distance);
}

QPointF PDFView::distanceToReveal(const QRectF& rect, QSizeF room) const
{
    const QSizeF size = viewport()->size();
    return {
        distanceInto(rect.left(), rect.right(), room.width(), size.width() - room.width()),
        distanceInto(rect.top(), rect.bottom(), room.height(), size.height() - room.height())};
}

bool PDFView::isAnimated() const
{
    return style()->styleHint(QStyle::SH_Widget_Animation_Duration, nullptr, this) != 0;
}

void PDFView::stopScrolling()
{
    m_scrolling->stop();
    m_revealer->stop();
}

} // namespace pdf
