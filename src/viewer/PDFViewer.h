// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "pdfview/JobQueue.h"
#include "printing/PrintersModule.h"

#include <QPointer>
#include <QWidget>

#include <utility>

class QUrl;

namespace pdf {
class PDFView;
} // namespace pdf

namespace quillo {

class AnalyticsService;
class DocumentState;
class InteractivePDFKitView;
class PrintOperation;
class ViewerToolbar;

/// The document pane of a window: a toolbar above the page view. It shows the file that the document state
/// names and writes the current page back into the state.
class PDFViewer : public QWidget
{
    Q_OBJECT

public:
    /// State and service must outlive the viewer.
    PDFViewer(DocumentState* documentState, AnalyticsService& analyticsService, QWidget* parent = nullptr);

    double zoomLevel() const { return m_zoomLevel; }

    /// Where printers come from, unless it is the printing system.
    void setPrinterSource(PrinterSource printers) { m_printers = std::move(printers); }

public Q_SLOTS:
    void previousPage();
    void nextPage();
    /// By a quarter, between 25 % and 500 %.
    void zoomOut();
    void zoomIn();
    /// The current page fills the width, until the zoom is changed by hand.
    void zoomToFit();
    /// The current page by a quarter turn.
    void rotateLeft();
    void rotateRight();
    /// Asks what to print and prints it. Nothing without a document, or while another print is on its way.
    void printDocument();

Q_SIGNALS:
    /// The first pages of what was opened last are on the screen, or there will be none, or not soon. Comes
    /// for every file that is opened, the same one again included, unless another one follows too early.
    void documentResolved();

protected:
    void changeEvent(QEvent* event) override;

private:
    void setZoomLevel(double zoomLevel, const QString& direction);
    void rotate(int degrees, const QString& direction);
    void turnPage(int page, int degrees);
    void beginPrinting();
    void followDocument();
    void showLink(const QUrl& address);
    void recordNavigation(const QString& direction);
    void showPage();
    void applyTheme();

    DocumentState* const m_documentState;
    AnalyticsService& m_analyticsService;
    pdf::PDFView* m_pdfView;
    InteractivePDFKitView* m_bridge;
    ViewerToolbar* m_toolbar;
    double m_zoomLevel = 1.0;
    pdf::JobQueue m_turning;
    PrinterSource m_printers;
    QPointer<PrintOperation> m_printing;
};

} // namespace quillo
