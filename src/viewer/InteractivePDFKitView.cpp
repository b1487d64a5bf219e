// SPDX-License-Identifier: AGPL-3.0-or-later
#include "viewer/InteractivePDFKitView.h"

#include "pdf/FileName.h"
#include "pdf/PDFDocument.h"
#include "pdfview/PDFView.h"
#include "viewer/DocumentOpener.h"

#include <chrono>
#include <system_error>
#include <utility>

namespace quillo {
namespace {

// How long a document may take to be on the screen. One whose first page is heavy takes longer, and one in a
// window that nobody sees is never painted.
constexpr std::chrono::seconds longestPainting(2);

} // namespace

InteractivePDFKitView::FileStamp InteractivePDFKitView::FileStamp::of(const QUrl& url)
{
    const std::filesystem::path path(pdf::bytesOfFileName(pdf::filePath(url)).toStdString());
    FileStamp stamp;
    std::error_code missing;
    stamp.size = std::filesystem::file_size(path, missing);
    stamp.modified = std::filesystem::last_write_time(path, missing);
    return stamp;
}

InteractivePDFKitView::InteractivePDFKitView(pdf::PDFView* pdfView)
    : QObject(pdfView)
    , m_pdfView(pdfView)
    , m_opener(new DocumentOpener(pdfView))
{
    m_pdfView->setAutoScales(true);
    m_patience.setSingleShot(true);
    m_patience.setInterval(longestPainting);
    connect(&m_patience, &QTimer::timeout, this, &InteractivePDFKitView::resolve);
    connect(m_opener, &DocumentOpener::opened, this, &InteractivePDFKitView::showDocument);
    connect(m_opener, &DocumentOpener::failed, this, &InteractivePDFKitView::resolveLater);
    connect(m_pdfView, &pdf::PDFView::firstPagesShown, this, [this] {
        if (showsWantedDocument())
            resolve();
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

void InteractivePDFKitView::open(const std::optional<QUrl>& url)
{
    ++m_turn;
    m_url = url;
    m_opener->cancel();
    m_patience.stop();
    m_isUnresolved = url.has_value();
    if (!url)
        return;
    m_stamp = FileStamp::of(*url);
    if (showsWantedDocument())
        resolveLater();
    else
        m_opener->open(pdf::filePath(*url), m_zoomLevel * m_pdfView->devicePixelRatioF());
}

void InteractivePDFKitView::setZoomLevel(double zoomLevel)
{
    m_zoomLevel = zoomLevel;
    if (m_pdfView->scaleFactor() != zoomLevel)
        m_pdfView->setScaleFactor(zoomLevel);
}

void InteractivePDFKitView::showDocument(const pdf::ShownDocument& shown)
{
    // The viewer's zoom level holds for whatever it shows, so automatic scaling ends here.
    m_pdfView->setScaleFactor(m_zoomLevel);
    m_shownUrl = m_url;
    m_shownStamp = m_stamp;
    m_pdfView->setDocument(shown);
    m_patience.start();
}

bool InteractivePDFKitView::showsWantedDocument() const
{
    const auto& document = m_pdfView->document();
    return document && m_url == m_shownUrl &&
           (m_stamp == m_shownStamp || document->isModified() || m_pdfView->hasUnfinishedEdits());
}

void InteractivePDFKitView::resolveLater()
{
    const auto resolveThis = [this, turn = m_turn] {
        if (turn == m_turn)
            resolve();
    };
    QMetaObject::invokeMethod(this, resolveThis, Qt::QueuedConnection);
}

void InteractivePDFKitView::resolve()
{
    m_patience.stop();
    if (std::exchange(m_isUnresolved, false))
        Q_EMIT documentResolved();
}

} // namespace quillo
