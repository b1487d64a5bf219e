// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdfview/SelectionEmphasis.h"

#include "pdfview/PDFView.h"
#include "pdfview/TextMarker.h"
#include "pdfview/TextRevealer.h"
#include "pdfview/TextSelector.h"

#include <QEasingCurve>
#include <QPainter>

#include <algorithm>

namespace pdf {
namespace {

constexpr int arrivalMilliseconds = 250;
constexpr int restMilliseconds = 200;
constexpr int fadingMilliseconds = 250;
constexpr int allMilliseconds = arrivalMilliseconds + restMilliseconds + fadingMilliseconds;

// By how much the picture is larger at first: by so many view points on each side, but not a multiple of
// itself.
constexpr double reach = 24.0;
constexpr double largestGrowth = 1.2;

// View points.
constexpr double rimWidth = 2.0;
constexpr double shadowWidth = 6.0;
constexpr int shadowSteps = 6;
constexpr int shadowAlpha = 16;

// A part of the arrival.
constexpr double appearing = 0.4;

void paintAround(QPainter& painter, const QPainterPath& outline, double width, const QColor& color)
{
    painter.strokePath(outline, QPen(color, 2 * width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
}

} // namespace

SelectionEmphasis::SelectionEmphasis(
    PDFView& view, const PageReader& reader, const TextSelector& selector, const TextRevealer& revealer)
    : m_view(view)
    , m_reader(reader)
    , m_selector(selector)
    , m_revealer(revealer)
{
    m_progress.setStartValue(0.0);
    m_progress.setEndValue(1.0 * allMilliseconds);
    m_progress.setDuration(allMilliseconds);
    connect(&m_progress, &QVariantAnimation::valueChanged, this, &SelectionEmphasis::update);
    connect(&m_progress, &QVariantAnimation::finished, this, &SelectionEmphasis::stop);
    connect(&selector, &TextSelector::rangeChanged, this, &SelectionEmphasis::stop);
    connect(&view, &PDFView::documentChanged, this, &SelectionEmphasis::stop);
    connect(&view, &PDFView::scaleChanged, this, &SelectionEmphasis::stop);
    connect(&view, &PDFView::pageOutdated, this, &SelectionEmphasis::stop);
}

void SelectionEmphasis::begin()
{
    stop();
    m_isAwaited = m_selector.isAnythingSelected() && m_view.isAnimated();
    m_view.viewport()->update();
}

void SelectionEmphasis::stop()
{
    m_isAwaited = false;
    m_progress.stop();
    if (m_picture.isNull())
        return;
    m_picture = {};
    update();
}

void SelectionEmphasis::paint(QPainter& painter)
{
    // Everything that it waits for is followed by another frame.
    if (m_isAwaited && !m_revealer.isUnderWay() && m_view.isSharp())
        QMetaObject::invokeMethod(this, &SelectionEmphasis::start, Qt::QueuedConnection);
    if (m_picture.isNull())
        return;
    const double time = m_progress.currentValue().toDouble();
    const double shown = std::min(time / (appearing * arrivalMilliseconds), 1.0);
    const double left = std::min((allMilliseconds - time) / fadingMilliseconds, 1.0);
    painter.save();
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.setOpacity(std::min(shown, left));
    painter.drawPixmap(place(), m_picture, m_picture.rect());
    painter.restore();
}

void SelectionEmphasis::start()
{
    if (!m_isAwaited || m_revealer.isUnderWay())
        return;
    const QPainterPath outline = this->outline();
    if (outline.isEmpty())
        return;
    m_isAwaited = false;
    // The user may have gone elsewhere meanwhile.
    if (!outline.intersects(QRectF(m_view.viewport()->rect())))
        return;
    takePicture(outline);
    m_progress.start();
}

QPainterPath SelectionEmphasis::outline() const
{
    const TextMarker marker(m_view, m_reader);
    const auto visible = m_view.pageViewport().visiblePages();
    QPainterPath outline;
    outline.setFillRule(Qt::WindingFill);
    for (int page = visible.first; page <= visible.last; ++page) {
        const TextRange range = m_selector.rangeOn(page);
        if (range.length > 0)
            outline.addPath(marker.outline(page, range));
    }
    return outline;
}

void SelectionEmphasis::takePicture(const QPainterPath& outline)
{
    const double room = rimWidth + shadowWidth;
    const QRect area = outline.boundingRect()
                           .intersected(QRectF(m_view.viewport()->rect()))
                           .adjusted(-room, -room, room, room)
                           .toAlignedRect();
    const double ratio = m_view.devicePixelRatioF();
    const auto blank = [&] {
        QPixmap pixmap(area.size() * ratio);
        pixmap.setDevicePixelRatio(ratio);
        pixmap.fill(Qt::transparent);
        return pixmap;
    };
    // The text as it looks on the screen, cut out with a rim of the paper around it.
    QPixmap text = blank();
    {
        QPainter painter(&text);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.translate(-area.topLeft());
        painter.fillPath(outline, Qt::black);
        paintAround(painter, outline, rimWidth, Qt::black);
        painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
        painter.drawPixmap(area.topLeft(), m_view.viewport()->grab(area));
    }
    m_picture = blank();
    QPainter painter(&m_picture);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(-area.topLeft());
    for (int step = 1; step <= shadowSteps; ++step) {
        paintAround(
            painter, outline, rimWidth + shadowWidth * step / shadowSteps, QColor(0, 0, 0, shadowAlpha));
    }
    painter.drawPixmap(area.topLeft(), text);
    painter.end();
    m_page = m_selector.firstPage();
    m_rest = QRectF(area).translated(-m_view.pageRect(m_page).topLeft());
}

QRectF SelectionEmphasis::place() const
{
    const double time = m_progress.currentValue().toDouble();
    const double arrived =
        QEasingCurve(QEasingCurve::InOutQuad).valueForProgress(std::min(time / arrivalMilliseconds, 1.0));
    const double longest = std::max(m_rest.width(), m_rest.height());
    const double growth = std::min(2 * reach / longest, largestGrowth) * (1.0 - arrived);
    const double x = m_rest.width() * growth / 2;
    const double y = m_rest.height() * growth / 2;
    return m_rest.translated(m_view.pageRect(m_page).topLeft()).adjusted(-x, -y, x, y);
}

void SelectionEmphasis::update()
{
    const QRectF before = m_painted;
    m_painted = m_picture.isNull() ? QRectF() : place();
    m_view.viewport()->update((before | m_painted).toAlignedRect().adjusted(-1, -1, 1, 1));
}

} // namespace pdf
