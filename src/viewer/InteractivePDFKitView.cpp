// SPDX-License-Identifier: AGPL-3.0-or-later
#include "viewer/InteractivePDFKitView.h"

#include "pdf/FileName.h"
#include "pdf/PDFDocument.h"
#include "pdfview/PDFView.h"
#include "viewer/DocumentOpener.h"

namespace quillo {

InteractivePDFKitView::InteractivePDFKitView(pdf::PDFView* pdfView)
    : QObject(pdfView)
    , m_pdfView(pdfView)
    , m_opener(new DocumentOpener(pdfView))
{
    m_pdfView->setAutoScales(true);
    connect(m_opener, &DocumentOpener::opened, this, &InteractivePDFKitView::showDocument);
    connect(m_opener, &DocumentOpener::failed, this, &InteractivePDFKitView::resolveLater);
    connect(m_pdfView, &pdf::PDFView::firstPagesShown, this, [this] {
        if (showsWantedDocument())
            Q_EMIT documentResolved();
    });
    connect(m_pdfView, &pdf::PDFView::scaleChanged, this, [this] {
        m_zoomLevel = m_pdfView->scaleFactor();
        Q_EMIT scaleFactorChanged(m_zoomLevel);
    });
    connect(
        m_pdfView, &pdf::PDFView::pageChanged, this,
        [this] {
            if (m_pdfView->document() && m_pdfView->currentPageIndex() >= 0)
                Q_EMIT currentPageChanged(m_pdfView->currentPageIndex());
        },
        Qt::QueuedConnection);
    connect(
        m_pdfView, &pdf::PDFView::selectionChanged, this,
        [this] {
            if (const auto& selection = m_pdfView->currentSelection())
                Q_EMIT selectedTextChanged(selection->string());
        },
        Qt::QueuedConnection);
}

void InteractivePDFKitView::update(const std::optional<QUrl>& url, double zoomLevel)
{
    m_zoomLevel = zoomLevel;
    if (m_pdfView->scaleFactor() != zoomLevel)
        m_pdfView->setScaleFactor(zoomLevel);
    if (url == m_url)
        return;
    m_url = url;
    m_opener->cancel();
    if (!url)
        return;
    if (showsWantedDocument())
        resolveLater();
    else
        m_opener->open(pdf::filePath(*url), zoomLevel * m_pdfView->devicePixelRatioF());
}

void InteractivePDFKitView::showDocument(const pdf::ShownDocument& shown)
{
    // The viewer's zoom level holds for whatever it shows, so automatic scaling ends here.
    m_pdfView->setScaleFactor(m_zoomLevel);
    m_pdfView->setDocument(shown);
}

bool InteractivePDFKitView::showsWantedDocument() const
{
    const auto& document = m_pdfView->document();
    return document && m_url && document->documentURL() == *m_url;
}

void InteractivePDFKitView::resolveLater()
{
    const auto resolve = [this, url = m_url] {
        if (url == m_url)
            Q_EMIT documentResolved();
    };
    QMetaObject::invokeMethod(this, resolve, Qt::QueuedConnection);
}

} // namespace quillo
