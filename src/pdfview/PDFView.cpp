// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdfview/PDFView.h"

#include "pdf/Limits.h"
#include "pdf/PDFDocument.h"
#include "pdfview/AccessiblePDFView.h"
#include "pdfview/FocusRing.h"
#include "pdfview/FormFiller.h"
#include "pdfview/HighlightedSelections.h"
#include "pdfview/KeyboardSelector.h"
#include "pdfview/LinkFollower.h"
#include "pdfview/PDFViewInput.h"
#include "pdfview/PagePainter.h"
#include "pdfview/PageReader.h"
#include "pdfview/ScrollAnimation.h"
#include "pdfview/SelectionEmphasis.h"
#include "pdfview/TextRevealer.h"
#include "pdfview/TextSelector.h"
#include "pdfview/ViewAnnouncer.h"
#include "pdfview/Waker.h"

#include <QEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QScopedValueRollback>
#include <QScrollBar>

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace pdf {
namespace {

// View points between the pages and around them.
constexpr int pageGap = 12;

// Beyond these a page is a dot, or a tile a blot.
constexpr double lowestScale = 0.02;
constexpr double highestScale = 64.0;

// The cache holds the view's pixels this many times over, as far as there is room: what is visible, what
// comes next in both directions, and what was visible at the scale before.
constexpr qsizetype cachedViews = 8;
constexpr qsizetype smallestCache = 24 * 1024 * 1024;
constexpr auto largestCache = static_cast<qsizetype>(limits::kept::tiles);

qsizetype imageBytes(QSize size)
{
    return qsizetype{4} * size.width() * size.height();
}

/// What is visible has to have room in any case, or it would be drawn again and again.
qsizetype cacheLimit(QSize view)
{
    const qsizetype visible = imageBytes(view + QSize(2 * tileSide, 2 * tileSide));
    return std::max(visible, std::clamp(cachedViews * imageBytes(view), smallestCache, largestCache));
}

// View points between the edge of the view and the ring that shows its focus, which is on the outside of
// that.
constexpr double focusRoom = 2.0;

// Where a size cannot be told the page takes the room of a sheet of letter paper.
constexpr QSizeF assumedPageSize(612, 792);

} // namespace

PDFView::PDFView(QWidget* parent)
    : QAbstractScrollArea(parent)
    , m_cache(smallestCache)
    , m_scrolling(new ScrollAnimation(this))
    , m_waker(std::make_unique<Waker>([this] { takeResults(); }))
    , m_input(std::make_unique<PDFViewInput>(*this))
    , m_forms(std::make_unique<FormFiller>(*this))
    , m_reader(std::make_unique<PageReader>(*this))
    , m_selector(std::make_unique<TextSelector>(*this, *m_reader))
    , m_links(std::make_unique<LinkFollower>(*this, *m_reader))
    , m_highlights(std::make_unique<HighlightedSelections>(*this, *m_reader, *m_selector))
    , m_revealer(std::make_unique<TextRevealer>(*this, *m_reader, *m_scrolling))
    , m_emphasis(std::make_unique<SelectionEmphasis>(*this, *m_reader, *m_selector, *m_revealer))
    , m_keyboard(std::make_unique<KeyboardSelector>(*this, *m_reader, *m_selector, *m_revealer))
    , m_announcer(std::make_unique<ViewAnnouncer>(*this))
{
    AccessiblePDFView::install();
    setFrameShape(QFrame::NoFrame);
    setFocusPolicy(Qt::StrongFocus);
    setAccessibleName(tr("Document pages"));
    // Every pixel is painted by paintEvent().
    viewport()->setAttribute(Qt::WA_OpaquePaintEvent);
    viewport()->setAutoFillBackground(false);
    viewport()->setMouseTracking(true);
    connect(m_forms.get(), &FormFiller::valueChanged, this, &PDFView::formFilled);
    connect(m_forms.get(), &FormFiller::walkedOut, this, [this](bool forward) {
        if (!forward || !m_links->walk(true))
            QAbstractScrollArea::focusNextPrevChild(forward);
    });
    connect(m_links.get(), &LinkFollower::addressFollowed, this, &PDFView::addressFollowed);
    connect(m_selector.get(), &TextSelector::selectionChanged, this, &PDFView::selectionChanged);
    const auto repaint = qOverload<>(&QWidget::update);
    connect(m_selector.get(), &TextSelector::rangeChanged, viewport(), repaint);
    connect(m_reader.get(), &PageReader::pageRead, viewport(), repaint);
    connect(m_scrolling, &ScrollAnimation::moved, this, [this](QPoint distance) {
        moveTo(m_viewport.x() + distance.x(), m_viewport.y() + distance.y());
    });
}

PDFView::~PDFView()
{
    if (m_shown.renderer)
        m_shown.renderer->setNotifier({});
}

void PDFView::setDocument(ShownDocument shown)
{
    if (m_shown.renderer)
        m_shown.renderer->setNotifier({});
    stopScrolling();
    m_shown = std::move(shown);
    m_cache.clear();
    m_failedPages.clear();
    m_outdatedPages.clear();
    m_pageToDisplay.clear();
    m_picturePages.clear();
    m_fallbackScale = 0.0;
    m_fittedPage = 0;
    m_arrival.reset();
    m_placesBefore.clear();
    m_placesAfter.clear();
    m_hasShownPages = false;
    const QSize size = m_viewport.size();
    m_viewport = PageViewport(m_shown.pageCount);
    m_viewport.setSize(size);
    m_viewport.setGap(static_cast<int>(std::lround(pageGap * m_devicePixelRatio)));
    applyScale();
    // What is already drawn is taken over now, so that it is in the very first frame.
    takeResults();
    if (m_shown.renderer) {
        m_shown.renderer->setNotifier([waker = m_waker.get()] { waker->wake(); });
    }
    m_currentPage = -1;
    Q_EMIT documentChanged();
    follow();
    if (m_shown.document && m_shown.pageCount == 0)
        announceFirstPages();
}

void PDFView::takeResults()
{
    if (!m_shown.renderer)
        return;
    bool isLayoutChanged = false;
    for (const auto& result : m_shown.renderer->takeResults()) {
        isLayoutChanged |= !std::holds_alternative<TileRenderer::TileDrawn>(result);
        std::visit([this](const auto& value) { take(value); }, result);
    }
    if (isLayoutChanged) {
        follow();
        arrive();
    } else {
        viewport()->update();
    }
}

void PDFView::take(const TileRenderer::PageSized& result)
{
    if (m_outdatedPages.erase(result.page) > 0)
        m_cache.outdate(result.page, [](const Tile&) { return false; });
    m_viewport.setPageSize(result.page, result.size);
    m_pageToDisplay[result.page] = result.pageToDisplay;
    if (result.hasPictures)
        m_picturePages.insert(result.page);
    else
        m_picturePages.erase(result.page);
    if (m_autoScales && result.page == m_fittedPage)
        fitWidth();
}

void PDFView::take(const TileRenderer::TileDrawn& result)
{
    const int page = result.tile.page;
    if (!result.isCurrent) {
        // The current one is under way; until then this is closer to it than what there is.
        if (isInView(result.tile))
            m_cache.insertOutdated(result.tile, result.image);
        return;
    }
    const bool wasOutdated = m_cache.hasOutdated(page);
    m_cache.insert(result.tile, result.image);
    if (wasOutdated && !m_cache.hasOutdated(page))
        Q_EMIT annotationsRefreshed(page);
    if (m_fallbackScale == 0.0 && !result.tile.isWholePage() && result.tile.scale != m_viewport.scale())
        m_fallbackScale = result.tile.scale;
}

void PDFView::take(const TileRenderer::PageFailed& result)
{
    m_failedPages[result.page] = result.isFileChanged
                                     ? tr("This page cannot be shown because another program has changed the "
                                          "file. Open the file again "
                                          "to see what it holds now.")
                                     : tr("This page cannot be shown.");
    Q_EMIT pageFailed(result.page);
    if (!m_viewport.layout().isKnown(result.page))
        m_viewport.setPageSize(result.page, assumedPageSize);
}

void PDFView::setScaleFactor(double factor)
{
    m_autoScales = false;
    const double bounded = std::clamp(factor, lowestScale, highestScale);
    if (bounded == m_scaleFactor)
        return;
    m_scaleFactor = bounded;
    applyScale();
    follow();
    Q_EMIT scaleChanged();
}

void PDFView::setAutoScales(bool automatic)
{
    m_autoScales = automatic;
    if (!automatic)
        return;
    m_fittedPage = std::max(m_currentPage, 0);
    fitWidth();
    follow();
}

void PDFView::fitWidth()
{
    if (!m_viewport.layout().isKnown(m_fittedPage))
        return;
    // The room of the scroll bar is left free even while it is hidden: its coming and going must not change
    // the scale.
    const int room = maximumViewportSize().width() - verticalScrollBar()->sizeHint().width() - 2 * pageGap;
    const double factor = std::clamp(
        room / m_viewport.layout().pageSize(m_fittedPage).width(), lowestScale, largestScaleFactor);
    const bool isChanged = factor != m_scaleFactor;
    m_scaleFactor = factor;
    applyScale();
    m_viewport.bringAcross(m_fittedPage);
    if (isChanged)
        Q_EMIT scaleChanged();
}

void PDFView::zoom(double factor, QPointF viewPoint)
{
    const double wanted = std::clamp(m_scaleFactor * factor, smallestScaleFactor, largestScaleFactor);
    // A scale that fitting has brought beyond the bounds only goes back towards them.
    if (wanted == m_scaleFactor || (wanted > m_scaleFactor) != (factor > 1.0))
        return;
    m_autoScales = false;
    stopScrolling();
    m_fallbackScale = m_viewport.scale();
    m_scaleFactor = wanted;
    m_viewport.setScale(wanted * m_devicePixelRatio, (viewPoint * m_devicePixelRatio).toPoint());
    follow();
    Q_EMIT scaleChanged();
}

void PDFView::applyScale()
{
    const double scale = m_scaleFactor * m_devicePixelRatio;
    if (scale == m_viewport.scale())
        return;
    m_scrolling->stop();
    if (m_viewport.layout().hasSizes())
        m_fallbackScale = m_viewport.scale();
    m_viewport.setScale(scale);
}

void PDFView::scrollBy(QPointF distance)
{
    stopScrolling();
    moveTo(
        m_viewport.x() + std::llround(distance.x() * m_devicePixelRatio),
        m_viewport.y() + std::llround(distance.y() * m_devicePixelRatio));
}

void PDFView::scrollSmoothlyBy(QPointF distance)
{
    if (!isAnimated())
        return scrollBy(distance);
    m_revealer->stop();
    m_scrolling->add(distance * m_devicePixelRatio);
}

void PDFView::moveTo(qint64 x, qint64 y)
{
    const qint64 before = m_viewport.y();
    m_arrival.reset();
    m_viewport.scrollTo(x, y);
    if (m_viewport.y() != before)
        m_direction = m_viewport.y() > before ? ScrollDirection::down : ScrollDirection::up;
    follow();
}

void PDFView::follow()
{
    updateScrollBars();
    updateCurrentPage();
    requestTiles();
    viewport()->update();
    Q_EMIT pagesMoved();
}

void PDFView::refreshAnnotations(int page)
{
    if (!m_shown.renderer)
        return;
    outdateTiles(page);
    m_shown.renderer->refreshAnnotations(page);
    requestTiles();
    Q_EMIT annotationsOutdated(page);
    if (!m_cache.hasOutdated(page))
        Q_EMIT annotationsRefreshed(page);
}

void PDFView::refreshPage(int page)
{
    if (!m_shown.renderer)
        return;
    m_failedPages.erase(page);
    m_outdatedPages.insert(page);
    outdateTiles(page);
    m_shown.renderer->refreshPage(page);
    requestTiles();
    Q_EMIT pageOutdated(page);
}

/// What is on the screen stays until it is replaced.
void PDFView::outdateTiles(int page)
{
    m_cache.outdate(page, [this](const Tile& tile) { return isInView(tile); });
}

bool PDFView::isInView(const Tile& tile) const
{
    const QRect view(QPoint(0, 0), m_viewport.size());
    const QRect rect = m_viewport.pageRect(tile.page);
    return tile.scale == m_viewport.scale() &&
           tileRect(tile, rect.size()).translated(rect.topLeft()).intersects(view);
}

void PDFView::updateScrollBars()
{
    // A bar that comes or goes resizes the viewport, which leads here again.
    const QScopedValueRollback moving(m_isMovingBars, true);
    // It depends on the whole document rather than on what is visible, so that it does not come and go while
    // pages of many widths are scrolled.
    const auto policy = m_viewport.isWiderThanView() ? Qt::ScrollBarAlwaysOn : Qt::ScrollBarAlwaysOff;
    if (horizontalScrollBarPolicy() != policy)
        setHorizontalScrollBarPolicy(policy);
    const qint64 most = std::max(m_viewport.maximumX(), m_viewport.maximumY());
    m_barUnit = most / std::numeric_limits<int>::max() + 1;
    const auto steps = [this](qint64 pixels) { return static_cast<int>(pixels / m_barUnit); };
    const int lineStep = steps(std::llround(48 * m_devicePixelRatio));
    horizontalScrollBar()->setRange(steps(m_viewport.minimumX()), steps(m_viewport.maximumX()));
    horizontalScrollBar()->setPageStep(steps(m_viewport.size().width()));
    horizontalScrollBar()->setSingleStep(lineStep);
    horizontalScrollBar()->setValue(steps(m_viewport.x()));
    verticalScrollBar()->setRange(0, steps(m_viewport.maximumY()));
    verticalScrollBar()->setPageStep(steps(m_viewport.size().height()));
    verticalScrollBar()->setSingleStep(lineStep);
    verticalScrollBar()->setValue(steps(m_viewport.y()));
}

void PDFView::scrollContentsBy(int, int)
{
    if (m_isMovingBars)
        return;
    stopScrolling();
    moveTo(horizontalScrollBar()->value() * m_barUnit, verticalScrollBar()->value() * m_barUnit);
}

void PDFView::updateCurrentPage()
{
    const int page = m_viewport.currentPage();
    if (page == m_currentPage)
        return;
    m_currentPage = page;
    Q_EMIT pageChanged();
}

void PDFView::requestTiles()
{
    if (!m_shown.renderer)
        return;
    m_shown.renderer->want(planTiles(
        m_viewport, m_direction, [this](const Tile& tile) { return isAtHand(tile); }, m_cache.byteLimit()));
}

bool PDFView::isAtHand(const Tile& tile) const
{
    return m_cache.contains(tile) || m_failedPages.contains(tile.page) ||
           (tile.isWholePage() && m_picturePages.contains(tile.page));
}

bool PDFView::isSharp() const
{
    return pdf::isSharp(m_viewport, [this](const Tile& tile) { return isAtHand(tile); });
}

QString PDFView::pageFailure(int page) const
{
    const auto failure = m_failedPages.find(page);
    return failure == m_failedPages.end() ? QString() : failure->second;
}

QRectF PDFView::pageRect(int page) const
{
    const QRect rect = m_viewport.pageRect(page);
    return {QPointF(rect.topLeft()) / m_devicePixelRatio, QSizeF(rect.size()) / m_devicePixelRatio};
}

QSize PDFView::sizeHint() const
{
    return {640, 800};
}

bool PDFView::event(QEvent* event)
{
    if (event->type() == QEvent::ScreenChangeInternal || event->type() == QEvent::Show)
        updateDevicePixelRatio();
    return QAbstractScrollArea::event(event);
}

void PDFView::updateDevicePixelRatio()
{
    if (devicePixelRatioF() == m_devicePixelRatio)
        return;
    m_devicePixelRatio = devicePixelRatioF();
    m_viewport.setSize((QSizeF(viewport()->size()) * m_devicePixelRatio).toSize());
    m_viewport.setGap(static_cast<int>(std::lround(pageGap * m_devicePixelRatio)));
    applyScale();
    follow();
}

void PDFView::resizeEvent(QResizeEvent* event)
{
    QAbstractScrollArea::resizeEvent(event);
    m_viewport.setSize((QSizeF(viewport()->size()) * m_devicePixelRatio).toSize());
    m_cache.setByteLimit(cacheLimit(m_viewport.size()));
    if (m_autoScales)
        fitWidth();
    follow();
}

void PDFView::paintEvent(QPaintEvent* event)
{
    QPainter painter(viewport());
    // On screens with a fraction as pixel ratio the view may begin between two pixels. The pages are put on
    // whole ones all the same, so that they stay crisp.
    const QTransform device = painter.deviceTransform();
    const QPointF start(device.dx(), device.dy());
    painter.scale(1.0 / m_devicePixelRatio, 1.0 / m_devicePixelRatio);
    painter.translate(QPointF(start.toPoint()) - start);

    const QRectF exposed = QRectF(event->rect());
    const QRect pixels = QRectF(exposed.topLeft() * m_devicePixelRatio, exposed.size() * m_devicePixelRatio)
                             .toAlignedRect()
                             .adjusted(-1, -1, 1, 1);
    PagePainter pages(m_viewport, m_cache, m_failedPages, m_fallbackScale);
    pages.paint(
        painter, pixels,
        {palette().color(QPalette::Window), palette().color(QPalette::Mid), m_devicePixelRatio});
    if (pages.isSharp())
        m_fallbackScale = 0.0;
    painter.scale(m_devicePixelRatio, m_devicePixelRatio);
    paintText(painter, exposed);
    m_forms->paint(painter);
    m_links->paint(painter);
    m_emphasis->paint(painter);
    paintFocus(painter);
    if (m_viewport.layout().hasSizes() && !pages.isAnythingMissing())
        announceFirstPages();
}

void PDFView::paintFocus(QPainter& painter) const
{
    if (m_showsFocus && hasFocus() && !m_links->hasKeyboard())
        paintFocusRing(
            painter, QRectF(viewport()->rect()).adjusted(focusRoom, focusRoom, -focusRoom, -focusRoom),
            palette().color(QPalette::Highlight));
}

void PDFView::announceFirstPages()
{
    if (m_hasShownPages)
        return;
    m_hasShownPages = true;
    // Whoever listens must not find the view in the middle of painting.
    QMetaObject::invokeMethod(this, &PDFView::firstPagesShown, Qt::QueuedConnection);
}

void PDFView::finishEditing(std::function<void()> then)
{
    m_forms->finish(std::move(then));
}

bool PDFView::hasUnfinishedEdits() const
{
    return m_forms->holdsUntakenValues();
}

} // namespace pdf
