// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "pdf/Cancellation.h"
#include "pdf/PDFDocument.h"
#include "pdfview/JobQueue.h"
#include "printing/PrintSettings.h"

#include <QObject>
#include <QTemporaryDir>

#include <atomic>
#include <memory>

class QProcess;

namespace quillo {

/// Prints a document once: its sheets are written on another thread, into the file that is wanted or into one
/// that is then handed to the printing system as it is. A job that is destroyed before it has ended is
/// cancelled and leaves nothing behind.
class PrintJob : public QObject
{
    Q_OBJECT

public:
    PrintJob(
        std::shared_ptr<pdf::PDFDocument> document, const PrintSettings& settings, const QString& title,
        QObject* parent = nullptr);
    ~PrintJob() override;

    void start();
    /// Nothing is emitted any more.
    void cancel();

Q_SIGNALS:
    void progressed(int sheets, int totalSheets);
    /// The sheets are with the printing system, or in the file.
    void printed(const pdf::PrintOutcome& outcome);
    /// Sentences in the user's language. What the engine or the printing system said is on the console.
    void failed(const QString& reason);

private:
    struct Progress;
    struct Ending;

    void takeSheets(const Ending& ending);
    void takeProgress();
    void handOver();
    void takeAnswer(int exitCode);

    const std::shared_ptr<pdf::PDFDocument> m_document;
    const PrintSettings m_settings;
    const QString m_title;
    const pdf::Cancellation m_cancellation;
    const std::shared_ptr<Progress> m_progress;
    /// Null where the file is the user's.
    std::shared_ptr<QTemporaryDir> m_folder;
    QString m_file;
    pdf::PrintOutcome m_outcome;
    pdf::JobQueue m_queue;
    QProcess* m_spooler = nullptr;
    bool m_isOver = false;
};

} // namespace quillo
