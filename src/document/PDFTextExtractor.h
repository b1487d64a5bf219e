// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "document/DocumentState.h"
#include "document/PageText.h"
#include "pdf/Cancellation.h"
#include "pdf/Limits.h"
#include "pdf/PDFError.h"
#include "platform/Actor.h"

#include <QFuture>
#include <QString>
#include <QUrl>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

namespace quillo {

/// How a file is read, and who is told of it.
struct ReadingOptions
{
    /// Told the number of pages, once and before any page is read, on the calling thread.
    std::function<void(std::int64_t)> onPageCount = {};
    /// Told that one more page is done, on the threads that read, several at a time.
    std::function<void()> onPageRead = {};
    /// Whether pages get their word boxes, which take several times the memory of the text.
    bool withBoxes = true;
    /// The processor time that a page may take, boxes included.
    std::chrono::milliseconds pageTime = pdf::limits::operation;
    /// About the memory that the word boxes of all pages may take together. Pages whose boxes would take more
    /// have an empty array of them.
    std::size_t boxMemory = std::size_t{256} << 20;
    /// The same for the texts. A document whose texts take more is refused as a whole: no ordinary one comes
    /// near it, and a part of its pages would pass for all.
    std::size_t textMemory = std::size_t{1} << 30;
};

/// Reads the text layer of a PDF into the window's document state. All work happens on the extractor's own
/// thread and its helpers; the state is written on the main thread.
class PDFTextExtractor
{
public:
    PDFTextExtractor();

    static PDFTextExtractor& shared();

    /// Fills totalPages (before any page is read), then pageTexts, each on the main thread. A file that
    /// cannot be opened leaves the state as it was and one line on standard output. The reading ends at once,
    /// and nothing more is written, when the state is deleted or names another file and when another file is
    /// read into it. To be called on the main thread; the future ends there after the last write.
    QFuture<void> extractText(const QUrl& url, DocumentState* documentState);

    /// The text of all pages in order, joined by two line feeds. Any thread.
    static QString getAllText(const PageTexts& pageTexts);

    struct Reading
    {
        std::int64_t totalPages = 0;
        PageTexts pageTexts;
        /// The zero-based numbers, ascending, of the pages that were given up on because they ask for too
        /// much time or memory. They have no text.
        std::vector<std::int64_t> abandonedPages = {};
    };

    /// Reads a whole file on the calling thread and as many helper threads as are worth it; pages are
    /// independent of one another and come back in page order. Pages that cannot be fetched are left out.
    /// What a page may cost is bounded, so whether it is given up on depends on itself alone and not on its
    /// neighbours or on how busy the machine is; a document takes as long as its pages do. Fails with
    /// `changedMeanwhile` when another program has written into the file while it was read; a file that was
    /// replaced by another one is read to its end. Without a password, one that the user gave earlier in this
    /// process for the same path is tried.
    static pdf::Result<Reading> readDocument(
        const QString& path, const std::optional<QString>& password, const pdf::Cancellation& cancellation,
        const ReadingOptions& options = {});

private:
    Actor m_actor;
};

} // namespace quillo
