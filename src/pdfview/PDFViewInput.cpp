// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdfview/PDFViewInput.h"

#include "pdfview/PDFView.h"

#include <QApplication>
#include <QKeyEvent>
#include <QNativeGestureEvent>
#include <QWheelEvent>

#include <cmath>

namespace pdf {
namespace {

// View points.
constexpr double lineHeight = 30.0;
constexpr double arrowKeyDistance = 48.0;
// What stays in view of a page of scrolling, so that the eye finds its place.
constexpr double pageKeyPart = 0.9;

constexpr double notch = 120.0;
constexpr double zoomPerNotch = 1.1;

} // namespace

PDFViewInput::PDFViewInput(PDFView& view)
    : m_view(view)
{}

bool PDFViewInput::wheel(const QWheelEvent& event)
{
    const QPoint angle = event.angleDelta();
    if (event.modifiers() & Qt::ControlModifier) {
        m_view.zoom(std::pow(zoomPerNotch, angle.y() / notch), event.position());
        return true;
    }
    // Pixels are only to be trusted where the system also tells the phases of the movement.
    if (!event.pixelDelta().isNull() && event.phase() != Qt::NoScrollPhase) {
        m_view.scrollBy(-event.pixelDelta());
        return true;
    }
    QPointF distance = -QPointF(angle) / notch * QApplication::wheelScrollLines() * lineHeight;
    if (event.modifiers() & Qt::ShiftModifier)
        distance = distance.transposed();
    // Less than a notch comes from a device that is smooth by itself.
    if (std::abs(angle.x()) < notch && std::abs(angle.y()) < notch)
        m_view.scrollBy(distance);
    else
        m_view.scrollSmoothlyBy(distance);
    return true;
}

bool PDFViewInput::keyPress(const QKeyEvent& event)
{
    if (event.matches(QKeySequence::Copy)) {
        m_view.copySelection();
        return true;
    }
    if (event.matches(QKeySequence::SelectAll)) {
        m_view.selectAll();
        return true;
    }
    if (event.matches(QKeySequence::Back)) {
        m_view.goBack();
        return true;
    }
    if (event.matches(QKeySequence::Forward)) {
        m_view.goForward();
        return true;
    }
    const double pageDistance = m_view.viewport()->height() * pageKeyPart;
    const bool isShifted = event.modifiers() & Qt::ShiftModifier;
    switch (event.key()) {
    case Qt::Key_Up:
        m_view.scrollSmoothlyBy({0, -arrowKeyDistance});
        return true;
    case Qt::Key_Down:
        m_view.scrollSmoothlyBy({0, arrowKeyDistance});
        return true;
    case Qt::Key_Left:
        if (m_view.canScrollSideways())
            m_view.scrollSmoothlyBy({-arrowKeyDistance, 0});
        else
            m_view.goToPreviousPage();
        return true;
    case Qt::Key_Right:
        if (m_view.canScrollSideways())
            m_view.scrollSmoothlyBy({arrowKeyDistance, 0});
        else
            m_view.goToNextPage();
        return true;
    case Qt::Key_PageUp:
        m_view.scrollSmoothlyBy({0, -pageDistance});
        return true;
    case Qt::Key_PageDown:
        m_view.scrollSmoothlyBy({0, pageDistance});
        return true;
    case Qt::Key_Space:
        m_view.scrollSmoothlyBy({0, isShifted ? -pageDistance : pageDistance});
        return true;
    case Qt::Key_Home:
        m_view.goToPage(0);
        return true;
    case Qt::Key_End:
        m_view.goToEnd();
        return true;
    default:
        return false;
    }
}

bool PDFViewInput::gesture(const QNativeGestureEvent& event)
{
    if (event.gestureType() != Qt::ZoomNativeGesture)
        return false;
    m_view.zoom(1.0 + event.value(), event.position());
    return true;
}

} // namespace pdf
