// SPDX-License-Identifier: AGPL-3.0-or-later
#include "printing/PrintJob.h"

#include "printing/RunningPrints.h"

#include <QCoreApplication>
#include <QProcess>
#include <QTimer>

#include <utility>

namespace quillo {
namespace {

constexpr std::chrono::milliseconds progressInterval(100);

/// The program by which a printing system of this kind takes files.
const QString spoolerProgram = QStringLiteral("lp");

QString sentence(const pdf::PDFError& error)
{
    using Code = pdf::PDFError::Code;
    switch (error.code) {
    case Code::refused:
    case Code::unwritable:
    case Code::changedMeanwhile: {
        QString text = error.message;
        text[0] = text[0].toUpper();
        return text + u'.';
    }
    case Code::limitExceeded:
        return QObject::tr("There is more to print than can be printed at once.");
    default:
        return QObject::tr("The document cannot be read.");
    }
}

} // namespace

/// What the writing thread tells.
struct PrintJob::Progress
{
    std::atomic<int> sheets = 0;
    std::atomic<int> total = 0;
};

PrintJob::PrintJob(
    std::shared_ptr<pdf::PDFDocument> document, const PrintSettings& settings, const QString& title,
    QObject* parent)
    : QObject(parent)
    , m_document(std::move(document))
    , m_settings(settings)
    , m_title(title)
    , m_progress(std::make_shared<Progress>())
    , m_file(settings.file)
{}

PrintJob::~PrintJob()
{
    cancel();
}

void PrintJob::start()
{
    if (!m_settings.printer.isEmpty()) {
        m_folder = std::make_shared<QTemporaryDir>();
        m_file = m_folder->filePath(QStringLiteral("sheets.pdf"));
    }
    auto* timer = new QTimer(this);
    connect(timer, &QTimer::timeout, this, &PrintJob::takeProgress);
    timer->start(progressInterval);
    m_queue.add(
        // The folder is removed when nobody writes into it any more.
        [document = m_document, file = m_file, folder = m_folder, layout = m_settings.layout,
         cancellation = m_cancellation, progress = m_progress, running = std::make_shared<RunningPrint>()] {
            return document->writePrintable(file, layout, cancellation, [progress](int sheets, int total) {
                progress->total = total;
                progress->sheets = sheets;
            });
        },
        [this, timer](const pdf::Result<pdf::PrintOutcome>& outcome) {
            delete timer;
            takeSheets(outcome);
        });
}

void PrintJob::cancel()
{
    m_isOver = true;
    m_cancellation.cancel();
    if (m_spooler) {
        m_spooler->disconnect(this);
        // It ends at once, and nobody waits for that.
        m_spooler->kill();
        connect(m_spooler, &QProcess::finished, m_spooler, &QObject::deleteLater);
        m_spooler->setParent(QCoreApplication::instance());
        m_spooler = nullptr;
    }
}

void PrintJob::takeProgress()
{
    if (!m_isOver && m_progress->total > 0)
        Q_EMIT progressed(m_progress->sheets, m_progress->total);
}

void PrintJob::takeSheets(const pdf::Result<pdf::PrintOutcome>& outcome)
{
    if (m_isOver)
        return;
    if (!outcome) {
        m_isOver = true;
        Q_EMIT failed(sentence(outcome.error()));
        return;
    }
    takeProgress();
    m_outcome = *outcome;
    if (m_folder) {
        handOver();
    } else {
        m_isOver = true;
        Q_EMIT printed(m_outcome);
    }
}

void PrintJob::handOver()
{
    QStringList arguments = {QStringLiteral("-d"), m_settings.printer,
                             QStringLiteral("-t"), m_title,
                             QStringLiteral("-n"), QString::number(m_settings.printerCopies)};
    for (const QString& option : m_settings.printerOptions)
        arguments += {QStringLiteral("-o"), option};
    arguments += {QStringLiteral("--"), m_file};
    m_spooler = new QProcess(this);
    m_spooler->setProcessChannelMode(QProcess::MergedChannels);
    connect(m_spooler, &QProcess::finished, this, &PrintJob::takeAnswer);
    connect(m_spooler, &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
        if (error != QProcess::FailedToStart || m_isOver)
            return;
        m_isOver = true;
        m_spooler->deleteLater();
        m_spooler = nullptr;
        Q_EMIT failed(tr("The printing system is not installed."));
    });
    m_spooler->start(spoolerProgram, arguments, QIODevice::ReadOnly);
}

void PrintJob::takeAnswer(int exitCode)
{
    m_isOver = true;
    const QString answer = QString::fromLocal8Bit(m_spooler->readAll()).trimmed();
    const bool isAccepted = exitCode == 0 && m_spooler->exitStatus() == QProcess::NormalExit;
    m_spooler->deleteLater();
    m_spooler = nullptr;
    if (isAccepted)
        Q_EMIT printed(m_outcome);
    else
        Q_EMIT failed(
            answer.isEmpty() ? tr("The printing system did not accept the document.")
                             : tr("The printing system says: %1").arg(answer));
}

} // namespace quillo
