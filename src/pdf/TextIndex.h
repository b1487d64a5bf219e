// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "pdf/Cancellation.h"
#include "pdf/CompactText.h"

#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

namespace pdf {

class PDFDocument;

/// The text of a document, read page by page by a thread of its own, so that a search has not to. The thread
/// opens the document's file once more and neither waits for the document nor makes it wait. Pages whose text
/// the document has changed are read from the document itself, when they are asked for the next time. What
/// exceeds the memory that an index may take is not kept and read again whenever it is asked for.
///
/// Safe from any thread.
class TextIndex
{
public:
    /// Begins to read. The document is not kept alive.
    static std::shared_ptr<TextIndex> begin(const std::shared_ptr<PDFDocument>& document);
    TextIndex(const TextIndex&) = delete;
    TextIndex& operator=(const TextIndex&) = delete;

    /// Ends the reading soon; who waits gets nothing.
    void stop();

    /// Waits until the number of pages is known; absent when stopped or cancelled.
    std::optional<int> pageCount(const Cancellation& cancellation);

    /// The page's text, empty when it has none or cannot be read. Waits until it is read; absent when stopped
    /// or cancelled.
    std::optional<CompactText> text(int page, const Cancellation& cancellation);

    /// Whether text() will give the page without waiting or reading.
    bool isAtHand(int page) const;

    /// True when every page was read.
    bool isComplete() const;

    /// What the kept text takes.
    qsizetype bytes() const;

private:
    explicit TextIndex(std::weak_ptr<PDFDocument> document);

    struct Page
    {
        /// Absent where the text is not kept.
        std::optional<CompactText> text;
        /// The count of the document's changes to the page when it was read.
        std::uint64_t changes = 0;
    };

    void read();
    /// The count of the document's changes to the page's text.
    std::uint64_t changes(int page) const;
    /// What a page with so many changes is read from: the second reading, or the document itself where that
    /// has another text or its file could not be opened once more. Null when the document is gone.
    std::shared_ptr<PDFDocument> source(std::uint64_t changes) const;
    /// Keeps the text in the page's place, as far as there is room.
    void keep(Page& place, CompactText text, std::uint64_t changes);
    /// False when it is time to end.
    bool readPage(int page);
    bool isOver(const Cancellation& cancellation) const;
    template <typename Condition>
    bool waitUntil(std::unique_lock<std::mutex>& lock, const Cancellation& cancellation, Condition condition);

    const std::weak_ptr<PDFDocument> m_document;
    const Cancellation m_stopping;

    mutable std::mutex m_mutex;
    std::condition_variable m_changed;
    std::optional<int> m_pageCount;
    /// The pages that were read so far.
    std::vector<Page> m_pages;
    qsizetype m_bytes = 0;
    /// Absent when there is nothing more to be read from it.
    std::shared_ptr<PDFDocument> m_reader;
};

} // namespace pdf
