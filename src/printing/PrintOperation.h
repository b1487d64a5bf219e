// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "pdf/PrintLayout.h"
#include "pdfview/JobQueue.h"
#include "printing/PrintersModule.h"

#include <QObject>
#include <QPointer>

#include <memory>

namespace pdf {
class PDFDocument;
} // namespace pdf

namespace quillo {

class PrintDialog;
class PrintJob;
class PrintProgressDialog;
struct PrintSettings;

/// Printing a document from the question what to print to the last word about it, in dialogs of a window.
/// Nothing of it waits. One that is destroyed takes its dialogs along, and what is not printed by then is
/// cancelled.
class PrintOperation : public QObject
{
    Q_OBJECT

public:
    /// `currentPage` is zero-based. The dialogs belong to the widget, which becomes the parent.
    PrintOperation(
        std::shared_ptr<pdf::PDFDocument> document, int currentPage, PrinterSource printers,
        QWidget* dialogParent);
    ~PrintOperation() override;

    /// Opens the dialog.
    void start();

Q_SIGNALS:
    /// The dialog is closed, whether something is to be printed or not.
    void dialogClosed();
    /// There is nothing more to be done.
    void finished();

private:
    void print(const PrintSettings& settings);
    void endJob();
    void reportDamage(const pdf::PrintOutcome& outcome);
    void reportFailure(const QString& reason);
    void tell(const QString& title, const QString& text, bool isWarning);

    const std::shared_ptr<pdf::PDFDocument> m_document;
    const int m_currentPage;
    const PrinterSource m_printers;
    QWidget* const m_dialogParent;
    pdf::JobQueue m_queue;
    QPointer<PrintDialog> m_dialog;
    QPointer<PrintProgressDialog> m_progress;
    PrintJob* m_job = nullptr;
};

} // namespace quillo
