// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "document/DocumentState.h"
#include "document/PageText.h"
#include "pdf/Cancellation.h"
#include "pdf/PDFError.h"
#include "platform/Actor.h"

#include <QFuture>
#include <QString>
#include <QUrl>

#include <functional>
#include <optional>

namespace pdf {
class PDFPage;
} // namespace pdf

namespace quillo {

/// Reads the text layer of a PDF into the window's document state. All work happens on the extractor's own
/// thread and its helpers; the state is written on the main thread.
class PDFTextExtractor
{
public:
    PDFTextExtractor();

    static PDFTextExtractor& shared();

    /// Fills totalPages (before any page is read), then pageTexts, each on the main thread. A file that
    /// cannot be opened leaves the state as it was and one line on standard output. Deleting the state ends
    /// the reading. To be called on the main thread; the future ends there after the last write.
    QFuture<void> extractText(const QUrl& url, DocumentState* documentState);

    /// The text of all pages in order, joined by two line feeds. Any thread.
    static QString getAllText(const PageTexts& pageTexts);

    /// One page's text with its word boxes. Any thread. A page that cannot be read in time has no text.
    static PageText
    readPage(std::int64_t pageNumber, pdf::PDFPage& page, const pdf::Cancellation& cancellation = {});

    struct Reading
    {
        std::int64_t totalPages = 0;
        PageTexts pageTexts;
    };

    /// Reads a whole file on the calling thread and as many helper threads as are worth it; pages are
    /// independent of one another and come back in page order. `onPageCount` is called once, before any page
    /// is read. Pages that cannot be fetched are left out. Pages that take unreasonably long have no text,
    /// and the more of them a document has the sooner they are given up, so that no document takes forever.
    /// Without a password, one that the user gave earlier in this process for the same path is tried.
    static pdf::Result<Reading> readDocument(
        const QString& path, const std::optional<QString>& password, const pdf::Cancellation& cancellation,
        const std::function<void(std::int64_t)>& onPageCount = {});

private:
    Actor m_actor;
};

} // namespace quillo
