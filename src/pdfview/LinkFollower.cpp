// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdfview/LinkFollower.h"

#include "pdfview/FocusRing.h"
#include "pdfview/PDFView.h"
#include "pdfview/PageReader.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QUrl>

#include <algorithm>
#include <utility>

namespace pdf {
namespace {

// What a hint shows of a long address.
constexpr qsizetype longestHint = 120;

// View points around a link that has been walked to.
constexpr double revealMargin = 32.0;

// View points between a link and the ring around it.
constexpr double ringRoom = 2.0;

bool isInert(const PDFLink& link)
{
    return std::holds_alternative<std::monostate>(link.target);
}

QString shortened(const QString& text)
{
    return text.size() <= longestHint ? text : text.left(longestHint - 1) + QChar(u'\u2026');
}

} // namespace

LinkFollower::LinkFollower(PDFView& view, PageReader& reader)
    : m_view(view)
    , m_reader(reader)
{
    connect(&view, &PDFView::documentChanged, this, [this] {
        m_pressed.reset();
        setCurrent(std::nullopt);
    });
    connect(&view, &PDFView::pagesMoved, this, [this] {
        if (m_current && !link(*m_current))
            setCurrent(std::nullopt);
    });
}

void LinkFollower::paint(QPainter& painter) const
{
    if (!m_current)
        return;
    if (const auto place = area(*m_current))
        paintFocusRing(
            painter, place->adjusted(-ringRoom, -ringRoom, ringRoom, ringRoom),
            m_view.palette().color(QPalette::Highlight));
}

void LinkFollower::mousePress(const QMouseEvent& event)
{
    setCurrent(std::nullopt);
    m_pressed.reset();
    // The second click of two is none of its own.
    if (event.button() != Qt::LeftButton || event.type() == QEvent::MouseButtonDblClick ||
        event.modifiers() & Qt::ShiftModifier)
        return;
    m_pressed = placeAt(event.position());
    m_pressPoint = event.position();
}

bool LinkFollower::mouseMove(const QMouseEvent& event)
{
    if (event.buttons() != Qt::NoButton || !placeAt(event.position()))
        return false;
    m_view.viewport()->setCursor(Qt::PointingHandCursor);
    return true;
}

bool LinkFollower::mouseRelease(const QMouseEvent& event)
{
    if (event.button() != Qt::LeftButton)
        return false;
    const auto pressed = std::exchange(m_pressed, std::nullopt);
    if (!pressed || placeAt(event.position()) != pressed)
        return false;
    // Whoever has dragged has selected.
    if ((event.position() - m_pressPoint).manhattanLength() >= QApplication::startDragDistance())
        return false;
    follow(*pressed);
    return true;
}

bool LinkFollower::keyPress(const QKeyEvent& event)
{
    if (!m_current || event.modifiers() & ~Qt::KeypadModifier)
        return false;
    switch (event.key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        follow(*m_current);
        return true;
    case Qt::Key_Escape:
        setCurrent(std::nullopt);
        return true;
    default:
        return false;
    }
}

bool LinkFollower::walk(bool forward)
{
    std::vector<Place> links = visibleLinks();
    std::optional<Place> next;
    if (!m_current) {
        next = firstToWalkTo(links, forward);
    } else {
        if (!forward)
            std::reverse(links.begin(), links.end());
        auto place = std::find(links.begin(), links.end(), *m_current);
        if (place != links.end() && ++place != links.end())
            next = *place;
    }
    setCurrent(next);
    if (!next)
        return false;
    if (const auto rect = area(*next))
        m_view.reveal(*rect, revealMargin);
    return true;
}

void LinkFollower::dropKeyboard()
{
    setCurrent(std::nullopt);
}

LinkFollower::Hint LinkFollower::hintAt(QPointF viewPoint) const
{
    const auto place = placeAt(viewPoint);
    return place ? hint(*place) : Hint();
}

LinkFollower::Hint LinkFollower::currentHint() const
{
    return m_current ? hint(*m_current) : Hint();
}

LinkFollower::Hint LinkFollower::hint(const Place& place) const
{
    const PDFLink* link = this->link(place);
    if (!link)
        return {};
    const QRectF rect = area(place).value_or(QRectF());
    if (const auto* destination = std::get_if<PDFDestination>(&link->target))
        return {tr("Page %1").arg(destination->page + 1), rect};
    // Encoded, so that no letter can pass for another or turn the reading direction.
    return {shortened(std::get<QUrl>(link->target).toString(QUrl::FullyEncoded)), rect};
}

const PDFLink* LinkFollower::link(const Place& place) const
{
    const PageMatter* matter = m_reader.page(place.page);
    return matter && place.index < matter->links.size() ? &matter->links[place.index] : nullptr;
}

std::optional<QRectF> LinkFollower::area(const Place& place) const
{
    const PDFLink* link = this->link(place);
    const auto toView = m_view.pageToView(place.page);
    if (!link || !toView)
        return std::nullopt;
    return toView->mapRect(link->bounds);
}

std::optional<LinkFollower::Place> LinkFollower::placeAt(QPointF viewPoint) const
{
    const int page = m_view.page(viewPoint, false);
    const PageMatter* matter = m_reader.page(page);
    const auto toView = m_view.pageToView(page);
    if (!matter || !toView)
        return std::nullopt;
    const QPointF point = toView->inverted().map(viewPoint);
    for (std::size_t i = matter->links.size(); i-- > 0;) {
        // What lies on top hides what is below, inert or not.
        if (matter->links[i].bounds.contains(point))
            return isInert(matter->links[i]) ? std::nullopt : std::optional(Place{page, i});
    }
    return std::nullopt;
}

std::vector<LinkFollower::Place> LinkFollower::visibleLinks() const
{
    std::vector<Place> places;
    const auto visible = m_view.pageViewport().visiblePages();
    for (int page = visible.first; page <= visible.last; ++page) {
        const PageMatter* matter = m_view.pageToView(page) ? m_reader.page(page) : nullptr;
        for (std::size_t i = 0; matter && i < matter->links.size(); ++i) {
            if (!isInert(matter->links[i]))
                places.push_back({page, i});
        }
    }
    return places;
}

std::optional<LinkFollower::Place>
LinkFollower::firstToWalkTo(const std::vector<Place>& links, bool forward) const
{
    // The eye is where the view is, so what has been scrolled past is left out.
    if (forward) {
        const auto next = std::find_if(
            links.begin(), links.end(), [this](const Place& place) { return area(place)->bottom() > 0; });
        return next == links.end() ? std::nullopt : std::optional(*next);
    }
    const auto last = std::find_if(links.rbegin(), links.rend(), [this](const Place& place) {
        return area(place)->top() < m_view.viewport()->height();
    });
    return last == links.rend() ? std::nullopt : std::optional(*last);
}

void LinkFollower::setCurrent(std::optional<Place> place)
{
    if (place == m_current)
        return;
    m_current = place;
    m_view.viewport()->update();
    Q_EMIT keyboardMoved();
}

void LinkFollower::follow(const Place& place)
{
    const PDFLink* link = this->link(place);
    if (!link)
        return;
    if (const auto* destination = std::get_if<PDFDestination>(&link->target)) {
        // Going there may forget the page that the link belongs to.
        const PDFDestination copy = *destination;
        setCurrent(std::nullopt);
        m_view.follow(copy);
    } else if (const auto* address = std::get_if<QUrl>(&link->target)) {
        Q_EMIT addressFollowed(*address);
    }
}

} // namespace pdf
