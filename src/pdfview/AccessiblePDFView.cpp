// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdfview/AccessiblePDFView.h"

#include "pdf/FileName.h"
#include "pdf/PDFDocument.h"
#include "pdf/TextLayer.h"
#include "pdfview/LinkFollower.h"
#include "pdfview/PDFView.h"
#include "pdfview/PageReader.h"
#include "pdfview/TextRevealer.h"
#include "pdfview/TextSelector.h"

#include <algorithm>

namespace pdf {
namespace {

QAccessibleInterface* makeInterface(const QString&, QObject* object)
{
    auto* view = qobject_cast<PDFView*>(object);
    return view ? new AccessiblePDFView(*view) : nullptr;
}

} // namespace

void AccessiblePDFView::install()
{
    QAccessible::installFactory(makeInterface);
}

AccessiblePDFView::AccessiblePDFView(PDFView& view)
    : QAccessibleWidget(&view, QAccessible::Document)
    , m_view(view)
{}

QAccessible::State AccessiblePDFView::state() const
{
    QAccessible::State state = QAccessibleWidget::state();
    state.readOnly = true;
    state.multiLine = true;
    state.selectableText = true;
    return state;
}

QString AccessiblePDFView::text(QAccessible::Text kind) const
{
    const auto& document = m_view.document();
    if (kind == QAccessible::Name && document)
        return printableFileName(document->documentURL());
    if (kind == QAccessible::Description && m_view.linkFollower().hasKeyboard())
        return PDFView::tr("Link: %1").arg(m_view.linkFollower().currentHint().text);
    if (kind == QAccessible::Description && m_view.currentPageIndex() >= 0)
        return PDFView::tr("Page %1 of %2").arg(m_view.currentPageIndex() + 1).arg(m_view.pageCount());
    return QAccessibleWidget::text(kind);
}

void* AccessiblePDFView::interface_cast(QAccessible::InterfaceType type)
{
    if (type == QAccessible::TextInterface)
        return static_cast<QAccessibleTextInterface*>(this);
    return QAccessibleWidget::interface_cast(type);
}

const TextLayer* AccessiblePDFView::pageText() const
{
    return m_view.pageReader().text(m_view.currentPageIndex());
}

void AccessiblePDFView::selection(int index, int* start, int* end) const
{
    const TextLayer* text = pageText();
    const TextRange range = text && index == 0
                                ? text->clipped(m_view.textSelector().rangeOn(m_view.currentPageIndex()))
                                : TextRange();
    *start = static_cast<int>(range.location);
    *end = static_cast<int>(range.end());
}

int AccessiblePDFView::selectionCount() const
{
    int start = 0;
    int end = 0;
    selection(0, &start, &end);
    return start < end ? 1 : 0;
}

void AccessiblePDFView::addSelection(int start, int end)
{
    setSelection(0, start, end);
}

void AccessiblePDFView::removeSelection(int index)
{
    if (index == 0)
        m_view.clearSelection();
}

void AccessiblePDFView::setSelection(int index, int start, int end)
{
    if (index != 0 || !pageText())
        return;
    const auto place = [&](int offset) {
        return TextPosition{m_view.currentPageIndex(), std::clamp(offset, 0, characterCount())};
    };
    m_view.textSelector().placeCaret(place(start));
    m_view.textSelector().extendTo(place(end));
}

int AccessiblePDFView::cursorPosition() const
{
    const auto end = m_view.textSelector().movingEnd();
    if (!end || end->page != m_view.currentPageIndex())
        return 0;
    return static_cast<int>(std::min<qsizetype>(end->index, characterCount()));
}

void AccessiblePDFView::setCursorPosition(int position)
{
    if (!pageText())
        return;
    m_view.textSelector().placeCaret({m_view.currentPageIndex(), std::clamp(position, 0, characterCount())});
    scrollToSubstring(position, position);
    QAccessibleTextCursorEvent event(this, cursorPosition());
    QAccessible::updateAccessibility(&event);
}

QString AccessiblePDFView::text(int start, int end) const
{
    const TextLayer* text = pageText();
    return text ? text->string().mid(std::max(start, 0), std::max(end - std::max(start, 0), 0)) : QString();
}

int AccessiblePDFView::characterCount() const
{
    const TextLayer* text = pageText();
    return text ? static_cast<int>(text->string().size()) : 0;
}

QRect AccessiblePDFView::characterRect(int offset) const
{
    const TextLayer* text = pageText();
    const auto toView = m_view.pageToView(m_view.currentPageIndex());
    if (!text || !toView || offset < 0 || offset > characterCount())
        return {};
    const auto shapes = text->outlines(text->clipped({offset, 1}));
    const QLineF caret = toView->map(text->caret(offset));
    const QRectF place = shapes.empty() ? QRectF(caret.p1(), caret.p2()).normalized()
                                        : toView->map(shapes.front()).boundingRect();
    return place.translated(m_view.viewport()->mapToGlobal(QPointF(0, 0))).toAlignedRect();
}

int AccessiblePDFView::offsetAtPoint(const QPoint& point) const
{
    const QPointF place = m_view.viewport()->mapFromGlobal(QPointF(point));
    const int page = m_view.currentPageIndex();
    const TextLayer* text = pageText();
    const auto toView = m_view.pageToView(page);
    if (!text || !toView || m_view.page(place, false) != page)
        return -1;
    return static_cast<int>(text->characterIndex(toView->inverted().map(place)));
}

void AccessiblePDFView::scrollToSubstring(int start, int end)
{
    m_view.textRevealer().reveal(
        m_view.currentPageIndex(), {start, std::max(end - start, 0)}, TextRevealer::Room::little);
}

QString AccessiblePDFView::attributes(int, int* start, int* end) const
{
    *start = 0;
    *end = characterCount();
    return {};
}

} // namespace pdf
