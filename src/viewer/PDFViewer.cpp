// SPDX-License-Identifier: AGPL-3.0-or-later
#include "viewer/PDFViewer.h"

#include "analytics/AnalyticsService.h"
#include "controls/QuietScrollBar.h"
#include "controls/Separator.h"
#include "document/DocumentState.h"
#include "pdf/PDFDocument.h"
#include "pdf/PDFPage.h"
#include "pdfview/PDFView.h"
#include "platform/Theme.h"
#include "printing/PrintOperation.h"
#include "viewer/InteractivePDFKitView.h"
#include "viewer/LinkDialog.h"
#include "viewer/ViewerToolbar.h"

#include <QApplication>
#include <QEvent>
#include <QVBoxLayout>

#include <algorithm>

namespace quillo {
namespace {

constexpr double zoomStep = 0.25;
constexpr double smallestZoom = 0.25;
constexpr double largestZoom = 5.0;

} // namespace

PDFViewer::PDFViewer(DocumentState* documentState, AnalyticsService& analyticsService, QWidget* parent)
    : QWidget(parent)
    , m_documentState(documentState)
    , m_analyticsService(analyticsService)
    , m_pdfView(new pdf::PDFView)
    , m_bridge(new InteractivePDFKitView(m_pdfView))
    , m_toolbar(new ViewerToolbar)
    , m_printers(printersModule(QCoreApplication::applicationDirPath()))
{
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(m_toolbar);
    column->addWidget(new Separator(Qt::Horizontal));
    column->addWidget(m_pdfView, 1);
    setFocusProxy(m_pdfView);
    m_pdfView->setVerticalScrollBar(new QuietScrollBar(Qt::Vertical));
    m_pdfView->setHorizontalScrollBar(new QuietScrollBar(Qt::Horizontal));
    // Otherwise the style draws a frame where the two bars meet.
    auto* corner = new QWidget;
    corner->setAutoFillBackground(true);
    m_pdfView->setCornerWidget(corner);

    connect(m_toolbar, &ViewerToolbar::previousPageRequested, this, &PDFViewer::previousPage);
    connect(m_toolbar, &ViewerToolbar::nextPageRequested, this, &PDFViewer::nextPage);
    connect(m_toolbar, &ViewerToolbar::zoomOutRequested, this, &PDFViewer::zoomOut);
    connect(m_toolbar, &ViewerToolbar::zoomInRequested, this, &PDFViewer::zoomIn);
    connect(m_toolbar, &ViewerToolbar::zoomToFitRequested, this, &PDFViewer::zoomToFit);
    connect(m_toolbar, &ViewerToolbar::rotateLeftRequested, this, &PDFViewer::rotateLeft);
    connect(m_toolbar, &ViewerToolbar::rotateRightRequested, this, &PDFViewer::rotateRight);
    connect(m_toolbar, &ViewerToolbar::printRequested, this, &PDFViewer::printDocument);
    connect(m_pdfView, &pdf::PDFView::documentChanged, this, &PDFViewer::followDocument);

    connect(m_pdfView, &pdf::PDFView::addressFollowed, this, &PDFViewer::showLink);
    connect(m_bridge, &InteractivePDFKitView::currentPageChanged, m_documentState, [this](int page) {
        m_documentState->setCurrentPage(page);
    });
    connect(
        m_bridge, &InteractivePDFKitView::selectedTextChanged, m_documentState,
        &DocumentState::setSelectedText);
    connect(m_bridge, &InteractivePDFKitView::scaleFactorChanged, this, [this](double factor) {
        m_zoomLevel = factor;
        m_toolbar->showZoomLevel(factor);
    });
    connect(m_bridge, &InteractivePDFKitView::documentResolved, this, &PDFViewer::documentResolved);
    connect(m_documentState, &DocumentState::didChange, this, [this](DocumentState::Field field) {
        if (field == DocumentState::Field::url)
            m_bridge->open(m_documentState->url());
        else if (field == DocumentState::Field::currentPage || field == DocumentState::Field::totalPages)
            showPage();
    });

    applyTheme();
    showPage();
    m_toolbar->showZoomLevel(m_zoomLevel);
    m_bridge->setZoomLevel(m_zoomLevel);
    m_bridge->open(m_documentState->url());
}

void PDFViewer::previousPage()
{
    m_pdfView->goToPreviousPage();
    recordNavigation(QStringLiteral("previous"));
}

void PDFViewer::nextPage()
{
    m_pdfView->goToNextPage();
    recordNavigation(QStringLiteral("next"));
}

void PDFViewer::zoomOut()
{
    const double level = m_zoomLevel - zoomStep;
    setZoomLevel(level <= smallestZoom ? smallestZoom : level, QStringLiteral("out"));
}

void PDFViewer::zoomIn()
{
    setZoomLevel(std::min(m_zoomLevel + zoomStep, largestZoom), QStringLiteral("in"));
}

void PDFViewer::zoomToFit()
{
    m_pdfView->setAutoScales(true);
}

void PDFViewer::rotateLeft()
{
    rotate(-90, QStringLiteral("left"));
}

void PDFViewer::rotateRight()
{
    rotate(90, QStringLiteral("right"));
}

void PDFViewer::rotate(int degrees, const QString& direction)
{
    const int page = m_pdfView->currentPageIndex();
    if (page < 0)
        return;
    m_pdfView->finishEditing([this, page, degrees] { turnPage(page, degrees); });
    m_analyticsService.trackEvent(EventType::pageRotation, {{QStringLiteral("direction"), direction}});
}

void PDFViewer::turnPage(int page, int degrees)
{
    const auto document = m_pdfView->document();
    m_turning.add(
        [document, page, degrees] {
            const auto turned = document->page(page);
            return turned && turned->setRotation((turned->rotation() + degrees) % 360);
        },
        [this, document, page](bool isTurned) {
            if (m_pdfView->document() != document)
                return;
            if (isTurned)
                m_pdfView->refreshPage(page);
            else
                QApplication::beep();
        });
}

void PDFViewer::showLink(const QUrl& address)
{
    auto* dialog = new LinkDialog(address, window());
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->open();
}

void PDFViewer::printDocument()
{
    if (m_pdfView->pageCount() > 0)
        m_pdfView->finishEditing([this] { beginPrinting(); });
}

void PDFViewer::beginPrinting()
{
    if (m_printing || m_pdfView->pageCount() == 0)
        return;
    m_printing = new PrintOperation(m_pdfView->document(), m_pdfView->currentPageIndex(), m_printers, this);
    connect(m_printing, &PrintOperation::dialogClosed, this, [this] {
        m_analyticsService.trackEvent(EventType::print);
    });
    connect(m_printing, &PrintOperation::finished, m_printing, &QObject::deleteLater);
    m_printing->start();
}

void PDFViewer::followDocument()
{
    // What is being printed is no longer what is shown.
    delete m_printing;
    m_toolbar->setPrintable(m_pdfView->pageCount() > 0);
}

void PDFViewer::setZoomLevel(double zoomLevel, const QString& direction)
{
    m_zoomLevel = zoomLevel;
    m_toolbar->showZoomLevel(zoomLevel);
    m_bridge->setZoomLevel(zoomLevel);
    m_analyticsService.trackEvent(
        EventType::zoom, {{QStringLiteral("level"), zoomLevel}, {QStringLiteral("direction"), direction}});
}

void PDFViewer::recordNavigation(const QString& direction)
{
    m_analyticsService.trackEvent(EventType::pageNavigation, {{QStringLiteral("direction"), direction}});
}

void PDFViewer::showPage()
{
    m_toolbar->showPage(m_documentState->currentPage(), m_documentState->totalPages());
}

void PDFViewer::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        applyTheme();
}

void PDFViewer::applyTheme()
{
    const Theme& theme = Theme::current();
    QPalette palette = theme.palette();
    palette.setColor(QPalette::Window, theme.color(ThemeColor::pageSurroundings));
    if (m_pdfView->palette() != palette)
        m_pdfView->setPalette(palette);
}

} // namespace quillo
