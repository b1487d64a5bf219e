// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdfview/KeyboardSelector.h"

#include "pdf/TextLayer.h"
#include "pdfview/PDFView.h"
#include "pdfview/PageReader.h"
#include "pdfview/TextRevealer.h"
#include "pdfview/TextSelector.h"

#include <QKeyEvent>

#include <algorithm>
#include <array>
#include <limits>

namespace pdf {
namespace {

constexpr qsizetype endOfPage = std::numeric_limits<qsizetype>::max();

struct Key
{
    QKeySequence::StandardKey key;
    TextMove move;
};

constexpr std::array<Key, 10> keys{{
    {QKeySequence::SelectNextChar, {TextStep::character, true}},
    {QKeySequence::SelectPreviousChar, {TextStep::character, false}},
    {QKeySequence::SelectNextWord, {TextStep::word, true}},
    {QKeySequence::SelectPreviousWord, {TextStep::word, false}},
    {QKeySequence::SelectNextLine, {TextStep::line, true}},
    {QKeySequence::SelectPreviousLine, {TextStep::line, false}},
    {QKeySequence::SelectEndOfLine, {TextStep::endOfLine, true}},
    {QKeySequence::SelectStartOfLine, {TextStep::endOfLine, false}},
    {QKeySequence::SelectEndOfDocument, {TextStep::endOfDocument, true}},
    {QKeySequence::SelectStartOfDocument, {TextStep::endOfDocument, false}},
}};

bool isSideways(TextStep step)
{
    return step == TextStep::character || step == TextStep::word;
}

} // namespace

KeyboardSelector::KeyboardSelector(
    PDFView& view, PageReader& reader, TextSelector& selector, TextRevealer& revealer)
    : m_view(view)
    , m_reader(reader)
    , m_selector(selector)
    , m_revealer(revealer)
{
    connect(&view, &PDFView::documentChanged, this, &KeyboardSelector::forget);
    connect(&reader, &PageReader::pageRead, this, &KeyboardSelector::proceed);
    // It is not known before how the page lies.
    connect(&view, &PDFView::pagesMoved, this, &KeyboardSelector::proceed);
    connect(&selector, &TextSelector::rangeChanged, this, [this] {
        if (!m_isExtending)
            forget();
    });
}

bool KeyboardSelector::keyPress(const QKeyEvent& event)
{
    if (event.key() == Qt::Key_Escape && event.modifiers() == Qt::NoModifier) {
        const bool wasBusy = !m_moves.empty() || m_selector.isAnythingSelected();
        forget();
        m_view.clearSelection();
        return wasBusy;
    }
    const auto* key = std::find_if(
        keys.begin(), keys.end(), [&](const Key& candidate) { return event.matches(candidate.key); });
    if (key == keys.end() || m_view.pageCount() == 0)
        return false;
    m_moves.push_back(key->move);
    proceed();
    return true;
}

void KeyboardSelector::forget()
{
    m_moves.clear();
    m_passage.reset();
    m_goal.reset();
    m_reader.hold(this, {});
}

void KeyboardSelector::proceed()
{
    while (!m_moves.empty()) {
        if (!begin() || !perform(m_moves.front()))
            return;
        m_moves.pop_front();
        if (const auto end = m_selector.movingEnd())
            m_revealer.reveal(end->page, {end->index, 0}, TextRevealer::Room::little);
    }
}

bool KeyboardSelector::begin()
{
    const auto end = m_selector.movingEnd();
    if (end && (m_selector.isAnythingSelected() || m_passage || isVisible(*end)))
        return true;
    m_passage.reset();
    const auto visible = m_view.pageViewport().visiblePages();
    for (int page = visible.first; page <= visible.last; ++page) {
        if (!isRead(page) || !m_view.pageToView(page))
            return false;
        if (const auto place = firstVisible(page)) {
            m_selector.placeCaret(*place);
            return true;
        }
    }
    if (visible.first <= visible.last)
        forget();
    return false;
}

bool KeyboardSelector::perform(TextMove move)
{
    if (move.step != TextStep::line)
        m_goal.reset();
    const TextPosition from = *m_selector.movingEnd();
    if (move.step == TextStep::endOfDocument) {
        extendTo(move.isForward ? TextPosition{m_view.pageCount() - 1, endOfPage} : TextPosition{0, 0});
        return true;
    }
    if (!m_passage) {
        if (!isRead(from.page))
            return false;
        if (const TextLayer* text = this->text(from.page)) {
            const qsizetype index = std::min(from.index, endOfText(*text));
            if (isSideways(move.step) && isRightToLeft(*text, index))
                move.isForward = !move.isForward;
            if (!m_goal)
                m_goal = text->caret(index).center();
            if (const auto to = moved(*text, index, move, *m_goal)) {
                extendTo({from.page, *to});
                return true;
            }
        }
        m_passage = Passage{from.page + (move.isForward ? 1 : -1), move.isForward};
    }
    return pass(move, from);
}

bool KeyboardSelector::pass(TextMove move, TextPosition from)
{
    move.isForward = m_passage->isForward;
    while (m_passage->page >= 0 && m_passage->page < m_view.pageCount()) {
        const int page = m_passage->page;
        if (!isRead(page))
            return false;
        const TextLayer* text = this->text(page);
        if (const auto to = text ? arrived(*text, move, m_goal.value_or(QPointF())) : std::nullopt) {
            m_passage.reset();
            extendTo({page, *to});
            return true;
        }
        m_passage->page += move.isForward ? 1 : -1;
    }
    // The document ends here.
    m_passage.reset();
    extendTo({from.page, move.isForward ? endOfPage : 0});
    return true;
}

bool KeyboardSelector::isRead(int page)
{
    m_reader.hold(this, {page});
    return m_reader.page(page) != nullptr;
}

const TextLayer* KeyboardSelector::text(int page) const
{
    const TextLayer* text = m_reader.text(page);
    return text && !text->string().isEmpty() ? text : nullptr;
}

bool KeyboardSelector::isVisible(TextPosition place) const
{
    if (m_revealer.isBringing(place.page))
        return true;
    const TextLayer* text = this->text(place.page);
    const auto toView = m_view.pageToView(place.page);
    return text && toView &&
           QRectF(m_view.viewport()->rect()).contains(toView->map(text->caret(place.index).center()));
}

std::optional<TextPosition> KeyboardSelector::firstVisible(int page) const
{
    const TextLayer* text = this->text(page);
    const auto toView = m_view.pageToView(page);
    if (!text || !toView)
        return std::nullopt;
    const QRectF view = m_view.viewport()->rect();
    for (qsizetype start = 0; start < text->string().size();) {
        const TextRange line = text->lineRange(start);
        for (const QPolygonF& part : text->outlines(line)) {
            const QRectF place = toView->map(part).boundingRect();
            // A line that is cut by the edge of the view counts by its larger part.
            const bool isInHeight = view.top() <= place.center().y() && place.center().y() <= view.bottom();
            if (isInHeight && place.intersects(view))
                return TextPosition{page, line.location};
        }
        start = line.end() + 1;
    }
    return std::nullopt;
}

void KeyboardSelector::extendTo(TextPosition place)
{
    m_isExtending = true;
    m_selector.extendTo(place);
    m_isExtending = false;
}

} // namespace pdf
