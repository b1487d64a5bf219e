// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdfview/TextSelector.h"

#include "pdf/PDFDocument.h"
#include "pdf/TextLayer.h"
#include "pdfview/JobQueue.h"
#include "pdfview/PDFView.h"
#include "pdfview/PageReader.h"
#include "pdfview/TextShift.h"

#include <QApplication>
#include <QClipboard>
#include <QMouseEvent>
#include <QStyleHints>

#include <algorithm>
#include <chrono>
#include <limits>
#include <utility>

namespace pdf {
namespace {

// How often the pages move on while the pointer is held beyond the edge of the view, and by what part of its
// distance.
constexpr std::chrono::milliseconds scrollInterval(16);
constexpr double scrollPart = 0.25;

// A hand that clicks is not quite still. View points.
constexpr double smallestDrag = 3.0;

constexpr qsizetype endOfPage = std::numeric_limits<qsizetype>::max();

double distanceBeyond(double value, double end)
{
    return value < 0 ? value : std::max(value - end, 0.0);
}

} // namespace

TextSelector::TextSelector(PDFView& view, PageReader& reader)
    : m_view(view)
    , m_reader(reader)
{
    m_autoScroll.setInterval(scrollInterval);
    connect(&m_autoScroll, &QTimer::timeout, this, &TextSelector::scrollWithDrag);
    connect(&view, &PDFView::documentChanged, this, &TextSelector::startDocument);
    connect(&view, &PDFView::pagesMoved, this, &TextSelector::followDrag);
    connect(&reader, &PageReader::textChanged, this, &TextSelector::followText);
    connect(&reader, &PageReader::pageRead, this, &TextSelector::followDrag);
    connect(&view, &PDFView::annotationsOutdated, this, &TextSelector::followUnread);
}

TextSelector::~TextSelector()
{
    if (m_reading)
        m_reading->cancel();
}

void TextSelector::endDrag()
{
    m_drag.reset();
    m_autoScroll.stop();
}

void TextSelector::startDocument()
{
    endDrag();
    m_anchor.reset();
    m_caret.reset();
    setSpan(std::nullopt);
    m_reading.reset();
    m_jobs = m_view.document() ? std::make_unique<JobQueue>() : nullptr;
}

void TextSelector::followText(int page, const TextShift& shift)
{
    if (m_caret && m_caret->page == page) {
        const auto place = shift.end(m_caret->index);
        m_caret = place ? std::optional(TextPosition{page, *place}) : std::nullopt;
    }
    auto span = selectedSpan();
    if (!span || page < span->from.page || page > span->to.page)
        return;
    const bool isBackwards = this->isBackwards();
    const bool isUsersOwn = m_isUsersOwn;
    std::optional<qsizetype> start = span->from.index;
    std::optional<qsizetype> end = span->to.index;
    if (span->from.page == page)
        start = shift.start(*start);
    if (span->to.page == page && span->to.index != endOfPage)
        end = shift.end(*end);
    if (start && end)
        span = Span{{span->from.page, *start}, {span->to.page, *end}};
    if (!start || !end || span->to <= span->from)
        return setSelection(std::nullopt);
    endDrag();
    m_span.reset();
    m_anchor = isBackwards ? Span{span->to, span->to} : Span{span->from, span->from};
    m_isUsersOwn = isUsersOwn;
    setSpan(span);
}

void TextSelector::followUnread(int page)
{
    const auto span = selectedSpan();
    if (!span || page < span->from.page || page > span->to.page || m_reader.page(page))
        return;
    // Where the ends are now cannot be told.
    if (page == span->from.page || (page == span->to.page && span->to.index != endOfPage))
        return setSelection(std::nullopt);
    m_span.reset();
    setSpan(span);
}

void TextSelector::setSelection(std::optional<PDFSelection> selection)
{
    endDrag();
    m_span.reset();
    m_anchor.reset();
    m_caret.reset();
    if (selection && (selection->document() != m_view.document() || selection->parts().empty()))
        selection.reset();
    if (selection) {
        const auto& first = selection->parts().front();
        const auto& last = selection->parts().back();
        m_anchor = Span{{first.page, first.range.location}, {last.page, last.range.end()}};
    }
    m_isUsersOwn = false;
    if (m_reading)
        m_reading->cancel();
    takeSelection(std::move(selection));
    Q_EMIT rangeChanged();
}

void TextSelector::select(TextPosition from, TextPosition to)
{
    endDrag();
    const auto [first, last] = std::minmax(from, to);
    m_anchor = Span{first, last};
    m_isUsersOwn = false;
    setSpan(m_anchor);
}

void TextSelector::selectAll()
{
    if (m_view.pageCount() == 0)
        return;
    select({0, 0}, {m_view.pageCount() - 1, endOfPage});
    m_isUsersOwn = true;
    offerToMiddleButton();
}

void TextSelector::placeCaret(TextPosition place)
{
    endDrag();
    m_anchor = Span{place, place};
    m_caret = place;
    setSpan(std::nullopt);
}

bool TextSelector::isBackwards() const
{
    const auto span = selectedSpan();
    return span && m_anchor && span->from < m_anchor->from;
}

std::optional<TextPosition> TextSelector::movingEnd() const
{
    const auto span = selectedSpan();
    if (!span)
        return m_caret;
    return isBackwards() ? span->from : span->to;
}

void TextSelector::extendTo(TextPosition place)
{
    const auto end = movingEnd();
    if (!end)
        return;
    TextPosition fixed = *end;
    if (const auto span = selectedSpan())
        fixed = isBackwards() ? span->to : span->from;
    endDrag();
    m_anchor = Span{fixed, fixed};
    m_caret = place;
    m_isUsersOwn = true;
    setSpan(
        place == fixed ? std::nullopt : std::optional(Span{std::min(place, fixed), std::max(place, fixed)}));
}

TextRange TextSelector::rangeOn(int page) const
{
    if (m_span) {
        if (page < m_span->from.page || page > m_span->to.page)
            return {};
        const qsizetype start = page == m_span->from.page ? m_span->from.index : 0;
        return {start, (page == m_span->to.page ? m_span->to.index : endOfPage) - start};
    }
    if (!m_selection)
        return {};
    const auto& parts = m_selection->parts();
    const auto place =
        std::lower_bound(parts.begin(), parts.end(), page, [](const PDFSelection::Part& part, int number) {
            return part.page < number;
        });
    return place != parts.end() && place->page == page ? place->range : TextRange();
}

int TextSelector::firstPage() const
{
    if (m_span)
        return m_span->from.page;
    return m_selection ? m_selection->parts().front().page : -1;
}

void TextSelector::copy()
{
    if (m_selection)
        QApplication::clipboard()->setText(m_selection->string());
    else
        m_copiesWhenRead = m_span.has_value();
}

TextSelector::Unit TextSelector::unitOfPress(const QMouseEvent& event)
{
    if (event.type() == QEvent::MouseButtonDblClick) {
        m_sinceDoubleClick.start();
        m_doubleClick = event.position();
        return Unit::word;
    }
    const bool isThird =
        m_sinceDoubleClick.isValid() && !m_sinceDoubleClick.hasExpired(QApplication::doubleClickInterval()) &&
        (event.position() - m_doubleClick).manhattanLength() < QApplication::startDragDistance();
    m_sinceDoubleClick.invalidate();
    return isThird ? Unit::line : Unit::character;
}

bool TextSelector::mousePress(const QMouseEvent& event)
{
    if (event.button() != Qt::LeftButton)
        return false;
    const Unit unit = unitOfPress(event);
    const auto place = pagePoint(event.position());
    if (!place)
        return false;
    const bool isExtending = (event.modifiers() & Qt::ShiftModifier) && (m_anchor || m_drag);
    // The first end may still be waiting for its page.
    if (!isExtending || m_anchor)
        m_drag = Drag{unit, *place, event.position(), false, false};
    m_drag->pointer = event.position();
    m_drag->isMoved = isExtending || unit != Unit::character;
    m_drag->isReleased = false;
    m_isUsersOwn = true;
    m_copiesWhenRead = false;
    if (!isExtending) {
        m_anchor.reset();
        m_caret.reset();
        setSpan(std::nullopt);
    }
    m_reader.hold(this, {m_drag->start.page, place->page});
    followDrag();
    return true;
}

bool TextSelector::mouseMove(const QMouseEvent& event)
{
    if (!m_drag || m_drag->isReleased) {
        if (event.buttons() != Qt::NoButton || !isOverText(event.position()))
            return false;
        m_view.viewport()->setCursor(Qt::IBeamCursor);
        return true;
    }
    if (!(event.buttons() & Qt::LeftButton)) {
        // The release has gone elsewhere.
        mouseRelease(event);
        return false;
    }
    if (!m_drag->isMoved && (event.position() - m_drag->pointer).manhattanLength() < smallestDrag)
        return true;
    m_drag->isMoved = true;
    m_drag->pointer = event.position();
    m_view.viewport()->setCursor(Qt::IBeamCursor);
    if (m_view.viewport()->rect().contains(event.position().toPoint()))
        m_autoScroll.stop();
    else if (!m_autoScroll.isActive())
        m_autoScroll.start();
    followDrag();
    return true;
}

bool TextSelector::mouseRelease(const QMouseEvent& event)
{
    if (!m_drag || (event.type() == QEvent::MouseButtonRelease && event.button() != Qt::LeftButton))
        return false;
    m_autoScroll.stop();
    m_drag->isReleased = true;
    followDrag();
    return true;
}

std::optional<TextSelector::PagePoint> TextSelector::pagePoint(QPointF viewPoint) const
{
    const int page = m_view.page(viewPoint, true);
    const auto toView = m_view.pageToView(page);
    if (!toView)
        return std::nullopt;
    return PagePoint{page, toView->inverted().map(viewPoint)};
}

std::optional<TextSelector::Span> TextSelector::unitAt(const PagePoint& place, Unit unit) const
{
    const PageMatter* matter = m_reader.page(place.page);
    if (!matter)
        return std::nullopt;
    if (!matter->text || matter->text->string().isEmpty())
        return Span{{place.page, 0}, {place.page, 0}};
    const TextLayer& text = *matter->text;
    const qsizetype index = text.insertionIndex(place.point);
    TextRange range = {index, 0};
    if (unit != Unit::character) {
        const qsizetype under = text.characterIndex(place.point);
        const qsizetype character = under >= 0 ? under : std::min(index, text.string().size() - 1);
        range = unit == Unit::word ? text.wordRange(character) : text.lineRange(character);
    }
    return Span{{place.page, range.location}, {place.page, range.end()}};
}

bool TextSelector::isOverText(QPointF viewPoint) const
{
    const int page = m_view.page(viewPoint, false);
    const TextLayer* text = m_reader.text(page);
    const auto toView = m_view.pageToView(page);
    return text && toView && text->characterIndex(toView->inverted().map(viewPoint)) >= 0;
}

void TextSelector::followDrag()
{
    if (!m_drag || !extendToPointer() || !m_drag->isReleased)
        return;
    m_drag.reset();
    offerToMiddleButton();
}

bool TextSelector::extendToPointer()
{
    if (!m_anchor) {
        m_anchor = unitAt(m_drag->start, m_drag->unit);
        const TextLayer* text = m_reader.text(m_drag->start.page);
        // Who clicks beside all text means no place in it.
        if (m_anchor && text && text->characterIndex(m_drag->start.point) >= 0)
            m_caret = m_anchor->from;
    }
    if (!m_anchor)
        return false;
    if (!m_drag->isMoved)
        return true;
    const auto place = pagePoint(m_drag->pointer);
    if (!place)
        return true;
    m_reader.hold(this, {m_drag->start.page, place->page});
    const auto here = unitAt(*place, m_drag->unit);
    if (!here)
        return false;
    const Span span = {std::min(m_anchor->from, here->from), std::max(m_anchor->to, here->to)};
    setSpan(span.from == span.to ? std::nullopt : std::optional(span));
    return true;
}

void TextSelector::scrollWithDrag()
{
    if (!m_drag)
        return;
    const QSize size = m_view.viewport()->size();
    const QPointF beyond(
        distanceBeyond(m_drag->pointer.x(), size.width()),
        distanceBeyond(m_drag->pointer.y(), size.height()));
    m_view.scrollBy(beyond * scrollPart);
}

void TextSelector::setSpan(std::optional<Span> span)
{
    if (span ? span == m_span : !isAnythingSelected())
        return;
    m_span = span;
    m_copiesWhenRead = false;
    if (m_reading)
        m_reading->cancel();
    if (!span) {
        takeSelection(std::nullopt);
    } else if (auto atHand = selectionAtHand(*span)) {
        takeSelection(std::move(atHand));
    } else {
        m_selection.reset();
        readSelection();
    }
    Q_EMIT rangeChanged();
}

std::optional<PDFSelection> TextSelector::selectionAtHand(const Span& span) const
{
    std::vector<PDFSelection::Part> parts;
    QString string;
    for (int page = span.from.page; page <= span.to.page; ++page) {
        const PageMatter* matter = m_reader.page(page);
        if (!matter)
            return std::nullopt;
        if (!matter->text)
            continue;
        const TextRange range = matter->text->clipped(rangeOn(page));
        if (range.length == 0)
            continue;
        string += QStringView(matter->text->string()).mid(range.location, range.length);
        parts.push_back({page, range, matter->text});
    }
    if (parts.empty())
        return std::nullopt;
    return PDFSelection(m_view.document(), std::move(parts), std::move(string));
}

void TextSelector::readSelection()
{
    // What was asked for last is read when the job that runs has given up.
    if (!m_span || !m_jobs || m_reading)
        return;
    m_reading = Cancellation();
    m_jobs->add(
        [document = m_view.document(), span = *m_span, cancellation = *m_reading] {
            return document->selection(span.from, span.to, cancellation);
        },
        [this, cancellation = *m_reading](const std::optional<PDFSelection>& selection) {
            m_reading.reset();
            if (!cancellation.isCancelled())
                takeSelection(selection);
            else if (!m_selection)
                readSelection();
        });
}

void TextSelector::takeSelection(std::optional<PDFSelection> selection)
{
    const bool isSame = selection.has_value() == m_selection.has_value() &&
                        (!selection || *selection == *m_selection) && !m_span;
    m_selection = std::move(selection);
    if (!isSame)
        Q_EMIT selectionChanged();
    if (std::exchange(m_copiesWhenRead, false))
        copy();
    if (!m_drag)
        offerToMiddleButton();
}

void TextSelector::offerToMiddleButton()
{
    QClipboard* clipboard = QApplication::clipboard();
    if (m_isUsersOwn && m_selection && clipboard->supportsSelection())
        clipboard->setText(m_selection->string(), QClipboard::Selection);
}

} // namespace pdf
