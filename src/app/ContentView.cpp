// SPDX-License-Identifier: AGPL-3.0-or-later
#include "app/ContentView.h"

#include "analytics/AnalyticsService.h"
#include "app/InAppToolbar.h"
#include "controls/MenuKeys.h"
#include "controls/Separator.h"
#include "document/DocumentState.h"
#include "document/PDFTextExtractor.h"
#include "platform/NotificationCenter.h"
#include "platform/Notifications.h"
#include "platform/SecurityScope.h"
#include "settings/EmptyStateView.h"
#include "sidebar/UnderstandSidebar.h"
#include "viewer/PDFViewer.h"

#include <QDragEnterEvent>
#include <QFutureWatcher>
#include <QHBoxLayout>
#include <QMimeData>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

namespace quillo {
namespace {

constexpr QSize usualSize(1280, 860);

/// The first of the dragged files that is on this machine.
QUrl localFile(const QMimeData& data)
{
    const QList<QUrl> urls = data.urls();
    const auto found =
        std::find_if(urls.begin(), urls.end(), [](const QUrl& url) { return url.isLocalFile(); });
    return found == urls.end() ? QUrl() : *found;
}

} // namespace

ContentView::ContentView(AnalyticsService& analyticsService, QWidget* parent)
    : QWidget(parent)
    , m_analyticsService(analyticsService)
    , m_documentState(new DocumentState(this))
{
    setWindowTitle(tr("Quillo"));
    setAcceptDrops(true);
    new MenuKeys(this);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    m_toolbar = new InAppToolbar(m_documentState);
    connect(m_toolbar, &InAppToolbar::openDocumentRequested, this, &ContentView::openDocumentRequested);
    connect(m_toolbar, &InAppToolbar::closeDocumentRequested, this, &ContentView::closeDocument);
    connect(m_toolbar, &InAppToolbar::sidebarToggled, this, &ContentView::setSidebarShown);
    column->addWidget(m_toolbar);
    column->addWidget(new Separator(Qt::Horizontal));
    m_panes = new QHBoxLayout;
    m_panes->setSpacing(0);
    column->addLayout(m_panes, 1);

    connect(m_documentState, &DocumentState::didChange, this, [this](DocumentState::Field field) {
        if (field == DocumentState::Field::url)
            followDocument();
    });
    followDocument();
    setSidebarShown(true);

    NotificationCenter::defaultCenter().addObserver(
        this, Notifications::openPDFDocument, [this](const QVariant& object) {
            if (object.typeId() == QMetaType::QUrl)
                openDocument(object.toUrl());
        });
}

QSize ContentView::sizeHint() const
{
    return usualSize;
}

void ContentView::openDocument(const QUrl& url)
{
    const bool hasSecurityScope = startAccessingSecurityScopedResource(url);
    m_analyticsService.trackEvent(
        EventType::documentOpened, {{QStringLiteral("hasSecurityScope"), hasSecurityScope}});
    // The text of an earlier document waits for nothing any more, and comes first.
    extractText();
    m_unreadUrl = url;
    m_textReading = std::make_shared<QPromise<void>>();
    m_textReading->start();
    if (m_sidebar)
        m_sidebar->setTextReading(m_textReading->future());
    m_documentState->setUrl(url);
}

void ContentView::closeDocument()
{
    extractText();
    m_documentState->setUrl(std::nullopt);
    m_documentState->setPageTexts(PageTexts());
    m_documentState->setInsight(std::nullopt);
}

void ContentView::followDocument()
{
    const bool isOpen = m_documentState->url().has_value();
    if (m_mainPane && isOpen == (qobject_cast<PDFViewer*>(m_mainPane) != nullptr))
        return;
    if (m_mainPane) {
        m_mainPane->hide();
        m_mainPane->deleteLater();
    }
    if (isOpen) {
        auto* viewer = new PDFViewer(m_documentState, m_analyticsService);
        connect(viewer, &PDFViewer::documentResolved, this, &ContentView::extractText);
        m_mainPane = viewer;
    } else {
        auto* emptyState = new EmptyStateView;
        connect(
            emptyState, &EmptyStateView::openDocumentRequested, this, &ContentView::openDocumentRequested);
        m_mainPane = emptyState;
    }
    m_panes->insertWidget(0, m_mainPane, 1);
    m_mainPane->setFocus();
}

void ContentView::setSidebarShown(bool shown)
{
    if (shown && !m_sidebar) {
        m_sidebarEdge = new Separator(Qt::Vertical);
        m_panes->addWidget(m_sidebarEdge);
        m_sidebar = new UnderstandSidebar(m_documentState, m_analyticsService);
        m_panes->addWidget(m_sidebar);
        if (m_textReading)
            m_sidebar->setTextReading(m_textReading->future());
    } else if (!shown) {
        delete std::exchange(m_sidebar, nullptr);
        delete std::exchange(m_sidebarEdge, nullptr);
    }
    m_toolbar->setSidebarShown(shown);
}

void ContentView::extractText()
{
    const auto url = std::exchange(m_unreadUrl, std::nullopt);
    if (!url)
        return;
    auto* extraction = new QFutureWatcher<void>(this);
    // Unlike a continuation it is told of every end, however the extraction comes to it.
    connect(extraction, &QFutureWatcher<void>::finished, this, [this, extraction, reading = m_textReading] {
        extraction->deleteLater();
        m_analyticsService.trackEvent(
            EventType::textExtractionComplete,
            {{QStringLiteral("pageCount"), qint64(m_documentState->totalPages())},
             {QStringLiteral("hasText"), !m_documentState->pageTexts()->empty()}});
        reading->finish();
    });
    extraction->setFuture(PDFTextExtractor::shared().extractText(*url, m_documentState));
}

void ContentView::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    if (!std::exchange(m_hasAppeared, true))
        m_analyticsService.trackEvent(EventType::appLaunch);
}

void ContentView::dragEnterEvent(QDragEnterEvent* event)
{
    if (event->mimeData()->hasUrls() && localFile(*event->mimeData()).isValid())
        event->acceptProposedAction();
}

void ContentView::dropEvent(QDropEvent* event)
{
    event->acceptProposedAction();
    NotificationCenter::defaultCenter().post(Notifications::openPDFDocument, localFile(*event->mimeData()));
}

} // namespace quillo
