// SPDX-License-Identifier: AGPL-3.0-or-later
#include "printing/PrintJob.h"

#include "platform/Console.h"
#include "printing/RunningPrints.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QProcess>
#include <QTimer>

#include <utility>

namespace quillo {
namespace {

constexpr std::chrono::milliseconds progressInterval(100);

/// The program by which a printing system of this kind takes files.
constexpr QLatin1String spoolerProgram("lp");

/// What the file itself tells of the reason why it could not be written.
QString sentenceAboutFile(const QFileInfo& file)
{
    const QFileInfo folder(file.path());
    if (!folder.isDir())
        return PrintJob::tr("The folder of the file does not exist.");
    if (file.exists() && !file.isFile())
        return PrintJob::tr("What has this name is no file that could be replaced.");
    if (file.exists() && !file.isWritable())
        return PrintJob::tr("The file may not be changed.");
    if (!folder.isWritable())
        return PrintJob::tr("The folder of the file may not be changed.");
    return PrintJob::tr("The file cannot be written. There may not be enough space for it.");
}

/// The engine's own words are for the console; people get a sentence that can be translated.
QString sentence(const pdf::PDFError& error, const QFileInfo& document, const QFileInfo& file)
{
    using Code = pdf::PDFError::Code;
    switch (error.code) {
    case Code::refused:
        return document == file ? PrintJob::tr("A document is not printed over its own file.")
                                : PrintJob::tr("The document does not allow printing.");
    case Code::unwritable:
        return sentenceAboutFile(file);
    case Code::changedMeanwhile:
        return PrintJob::tr("Another program has changed the file since it was opened.");
    case Code::limitExceeded:
        return PrintJob::tr("There is more to print than can be printed at once.");
    default:
        return PrintJob::tr("The document cannot be read.");
    }
}

void reportToConsole(const QString& reason)
{
    // One line, whatever came.
    printLine(QStringLiteral("❌ Printing failed: %1").arg(reason.simplified()));
}

} // namespace

/// What the writing thread tells.
struct PrintJob::Progress
{
    std::atomic<int> sheets = 0;
    std::atomic<int> total = 0;
};

/// How the writing ended.
struct PrintJob::Ending
{
    pdf::Result<pdf::PrintOutcome> outcome;
    /// For people, where there are no sheets.
    QString reason;
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
            Ending ending{
                document->writePrintable(
                    file, layout, cancellation,
                    [progress](int sheets, int total) {
                        progress->total = total;
                        progress->sheets = sheets;
                    }),
                {}};
            // Here, because looking at files can take its time.
            if (!ending.outcome)
                ending.reason = sentence(
                    ending.outcome.error(), QFileInfo(document->documentURL().toLocalFile()),
                    QFileInfo(file));
            return ending;
        },
        [this, timer](const Ending& ending) {
            delete timer;
            takeSheets(ending);
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

void PrintJob::takeSheets(const Ending& ending)
{
    if (m_isOver)
        return;
    if (!ending.outcome) {
        m_isOver = true;
        reportToConsole(ending.outcome.error().message);
        Q_EMIT failed(ending.reason);
        return;
    }
    takeProgress();
    m_outcome = *ending.outcome;
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
        reportToConsole(m_spooler->errorString());
        m_spooler->deleteLater();
        m_spooler = nullptr;
        Q_EMIT failed(tr("The printing system is not installed."));
    });
    m_spooler->start(spoolerProgram, arguments, QIODevice::ReadOnly);
}

void PrintJob::takeAnswer(int exitCode)
{
    m_isOver = true;
    const QString answer = QString::fromLocal8Bit(m_spooler->readAll());
    const bool isAccepted = exitCode == 0 && m_spooler->exitStatus() == QProcess::NormalExit;
    m_spooler->deleteLater();
    m_spooler = nullptr;
    if (isAccepted) {
        Q_EMIT printed(m_outcome);
        return;
    }
    reportToConsole(
        QStringLiteral("%1 ended with status %2. %3").arg(spoolerProgram).arg(exitCode).arg(answer));
    Q_EMIT failed(tr("The printing system did not accept the document."));
}

} // namespace quillo
