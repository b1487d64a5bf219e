// SPDX-License-Identifier: AGPL-3.0-or-later
#include "printing/PrintOperation.h"

#include "pdf/FileName.h"
#include "pdf/PDFDocument.h"
#include "printing/PrintDialog.h"
#include "printing/PrintJob.h"
#include "printing/PrintProgressDialog.h"

#include <QFileInfo>
#include <QMessageBox>
#include <QTimer>
#include <QUrl>

#include <utility>

namespace quillo {
namespace {

// What is done by then shows no progress.
constexpr std::chrono::milliseconds progressDelay(400);

constexpr std::size_t namedPages = 10;

QString titleOf(const pdf::PDFDocument& document)
{
    return pdf::printableFileName(document.documentURL());
}

QString suggestedFile(const pdf::PDFDocument& document)
{
    const QFileInfo source(document.documentURL().toLocalFile());
    return source.absolutePath() + u'/' + source.completeBaseName() + QStringLiteral("-print.pdf");
}

} // namespace

PrintOperation::PrintOperation(
    std::shared_ptr<pdf::PDFDocument> document, int currentPage, PrinterSource printers,
    QWidget* dialogParent)
    : QObject(dialogParent)
    , m_document(std::move(document))
    , m_currentPage(currentPage)
    , m_printers(std::move(printers))
    , m_dialogParent(dialogParent)
{}

PrintOperation::~PrintOperation()
{
    delete m_job;
    delete m_dialog;
    delete m_progress;
}

void PrintOperation::start()
{
    m_dialog =
        new PrintDialog(m_document->pageCount(), m_currentPage, suggestedFile(*m_document), m_dialogParent);
    m_dialog->setAttribute(Qt::WA_DeleteOnClose);
    connect(m_dialog, &QDialog::finished, this, [this](int result) {
        const PrintSettings settings = m_dialog->settings();
        Q_EMIT dialogClosed();
        if (result == QDialog::Accepted)
            print(settings);
        else
            Q_EMIT finished();
    });
    m_dialog->open();
    m_queue.add(m_printers, [this](const PrinterListing& listing) {
        if (m_dialog)
            m_dialog->setPrinters(listing);
    });
}

void PrintOperation::print(const PrintSettings& settings)
{
    const QString title = titleOf(*m_document);
    m_progress = new PrintProgressDialog(title, m_dialogParent);
    m_progress->setWindowModality(Qt::WindowModal);
    QTimer::singleShot(progressDelay, m_progress, &QDialog::show);
    connect(m_progress, &QDialog::rejected, this, [this] {
        endJob();
        Q_EMIT finished();
    });
    m_job = new PrintJob(m_document, settings, title, this);
    connect(m_job, &PrintJob::progressed, m_progress, &PrintProgressDialog::showProgress);
    connect(m_job, &PrintJob::printed, this, [this](const pdf::PrintOutcome& outcome) {
        endJob();
        if (outcome.damagedPages.empty())
            Q_EMIT finished();
        else
            reportDamage(outcome);
    });
    connect(m_job, &PrintJob::failed, this, &PrintOperation::reportFailure);
    m_job->start();
}

void PrintOperation::endJob()
{
    if (m_job) {
        m_job->cancel();
        m_job->deleteLater();
        m_job = nullptr;
    }
    if (m_progress) {
        m_progress->hide();
        m_progress->deleteLater();
        m_progress = nullptr;
    }
}

void PrintOperation::reportDamage(const pdf::PrintOutcome& outcome)
{
    QStringList pages;
    for (const int page : outcome.damagedPages) {
        if (static_cast<std::size_t>(pages.size()) == namedPages) {
            pages.append(QStringLiteral("…"));
            break;
        }
        pages.append(QString::number(page + 1));
    }
    tell(
        tr("Printed with Gaps"),
        tr("These pages are damaged and were left blank: %1").arg(pages.join(QStringLiteral(", "))), false);
}

void PrintOperation::reportFailure(const QString& reason)
{
    endJob();
    tell(tr("Print Failed"), tr("“%1” was not printed. %2").arg(titleOf(*m_document), reason), true);
}

void PrintOperation::tell(const QString& title, const QString& text, bool isWarning)
{
    auto* message = new QMessageBox(
        isWarning ? QMessageBox::Warning : QMessageBox::Information, title, text, QMessageBox::Ok,
        m_dialogParent);
    message->setAttribute(Qt::WA_DeleteOnClose);
    connect(message, &QDialog::finished, this, &PrintOperation::finished);
    message->open();
}

} // namespace quillo
