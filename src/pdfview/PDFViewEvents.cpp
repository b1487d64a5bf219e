// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdfview/FormFiller.h"
#include "pdfview/KeyboardSelector.h"
#include "pdfview/LinkFollower.h"
#include "pdfview/PDFView.h"
#include "pdfview/PDFViewInput.h"
#include "pdfview/TextSelector.h"

#include <QHelpEvent>
#include <QMouseEvent>
#include <QNativeGestureEvent>
#include <QToolTip>

// Which part of the view an event of mouse or keyboard is for.
namespace pdf {

void PDFView::wheelEvent(QWheelEvent* event)
{
    event->setAccepted(m_input->wheel(*event));
}

void PDFView::keyPressEvent(QKeyEvent* event)
{
    // QAbstractScrollArea's own keys would move the bars behind the input's back.
    event->setAccepted(
        m_links->keyPress(*event) || m_keyboard->keyPress(*event) || m_input->keyPress(*event));
}

void PDFView::mousePressEvent(QMouseEvent* event)
{
    if (m_showsFocus) {
        m_showsFocus = false;
        viewport()->update();
    }
    if (m_forms->mousePress(*event))
        return;
    // Where a link is, text may be selected as well; only the release tells which was meant.
    m_links->mousePress(*event);
    event->setAccepted(m_selector->mousePress(*event));
}

void PDFView::mouseDoubleClickEvent(QMouseEvent* event)
{
    mousePressEvent(event);
}

void PDFView::mouseMoveEvent(QMouseEvent* event)
{
    if (!m_forms->mouseMove(*event) && !m_links->mouseMove(*event) && !m_selector->mouseMove(*event))
        viewport()->unsetCursor();
}

void PDFView::mouseReleaseEvent(QMouseEvent* event)
{
    if (m_forms->mouseRelease(*event))
        return;
    const bool isText = m_selector->mouseRelease(*event);
    event->setAccepted(m_links->mouseRelease(*event) || isText);
}

void PDFView::focusInEvent(QFocusEvent* event)
{
    switch (event->reason()) {
    case Qt::TabFocusReason:
    case Qt::BacktabFocusReason:
    case Qt::ShortcutFocusReason:
        m_showsFocus = true;
        break;
    case Qt::ActiveWindowFocusReason:
    case Qt::PopupFocusReason:
    case Qt::MenuBarFocusReason:
        // The keyboard returns after an absence.
        break;
    default:
        m_showsFocus = false;
    }
    viewport()->update();
    QAbstractScrollArea::focusInEvent(event);
}

void PDFView::focusOutEvent(QFocusEvent* event)
{
    m_links->dropKeyboard();
    viewport()->update();
    QAbstractScrollArea::focusOutEvent(event);
}

bool PDFView::focusNextPrevChild(bool next)
{
    // The form fields come first, then the links.
    const bool walksInForm = next && !m_links->hasKeyboard() && m_forms->walkIn(true);
    if (walksInForm || m_links->walk(next) || (!next && m_forms->walkIn(false)))
        return true;
    return QAbstractScrollArea::focusNextPrevChild(next);
}

bool PDFView::viewportEvent(QEvent* event)
{
    if (event->type() == QEvent::NativeGesture && m_input->gesture(*static_cast<QNativeGestureEvent*>(event)))
        return true;
    if (event->type() == QEvent::ToolTip)
        return showHint(*static_cast<QHelpEvent*>(event));
    return QAbstractScrollArea::viewportEvent(event);
}

bool PDFView::showHint(const QHelpEvent& event) const
{
    const auto hint = m_links->hintAt(event.pos());
    // An empty text hides the hint that is there.
    QToolTip::showText(event.globalPos(), hint.text, viewport(), hint.area.toAlignedRect());
    return true;
}

} // namespace pdf
