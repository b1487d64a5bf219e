// SPDX-License-Identifier: AGPL-3.0-or-later
#include "document/PDFTextExtractor.h"

#include "document/DocumentPasswords.h"
#include "document/ReadingGuard.h"
#include "pdf/FileName.h"
#include "pdf/PDFDocument.h"
#include "pdf/PDFPage.h"
#include "pdf/ProcessorBudget.h"
#include "pdf/TextLayer.h"

#include <QCoreApplication>
#include <QPointer>
#include <QPromise>
#include <QTextBoundaryFinder>
#include <QThread>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <memory>
#include <thread>
#include <utility>

namespace quillo {
namespace {

// Opening the file once more has to pay off: a helper thread joins for every so many pages.
constexpr int pagesWorthAThread = 8;

// Large enough that threads seldom meet at the counter, small enough that none is left with a long tail.
constexpr int pagesPerTurn = 4;

// So many boxes are made between two looks at the time, which costs more than a box.
constexpr std::size_t boxesBetweenLooks = 4096;

bool isBlank(QStringView text)
{
    return std::all_of(text.begin(), text.end(), [](QChar character) { return character.isSpace(); });
}

/// Counts user-perceived characters.
qsizetype characterCount(QStringView word)
{
    // Nothing below U+0300 combines with what stands before it.
    if (std::all_of(word.begin(), word.end(), [](QChar unit) { return unit.unicode() < 0x300; }))
        return word.size();
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, word.data(), word.size());
    qsizetype count = 0;
    while (finder.toNextBoundary() != -1)
        ++count;
    return count;
}

/// Calls `use` with each run of characters between white space, until that gives false.
template <typename Use>
void forEachWord(const QString& text, Use&& use)
{
    qsizetype start = 0;
    for (qsizetype i = 0; i <= text.size(); ++i) {
        if (i < text.size() && !text[i].isSpace())
            continue;
        if (i > start && !use(text.mid(start, i - start)))
            return;
        start = i + 1;
    }
}

/// A box for every word, until the budget is spent. Each box covers the first characters of the page, as many
/// as the word has: boxes tell how much text there is and are not used to find it on the page. Words of one
/// length share one look at the page, so all boxes together cost time linear in the page's characters.
std::vector<TextBoundingBox>
extractBoundingBoxes(const QString& text, pdf::PDFPage& page, const pdf::ProcessorBudget& budget)
{
    struct Box
    {
        bool known = false;
        std::optional<QRectF> rect;
    };
    std::vector<Box> boxes;
    std::vector<TextBoundingBox> result;
    forEachWord(text, [&](QString word) {
        const qsizetype length = characterCount(word);
        if (static_cast<std::size_t>(length) >= boxes.size())
            boxes.resize(static_cast<std::size_t>(length) + 1);
        Box& box = boxes[static_cast<std::size_t>(length)];
        if (!box.known) {
            box.known = true;
            if (const auto selection = page.selection({0, length}))
                box.rect = selection->bounds(page);
        }
        if (box.rect)
            result.push_back({std::move(word), *box.rect});
        return result.size() % boxesBetweenLooks != 0 || !budget.isSpent();
    });
    return result;
}

PageText withoutText(std::int64_t pageNumber)
{
    return {pageNumber, QString(), false, std::nullopt};
}

enum class WordBoxes { absent, none, all };

/// About what the boxes take in memory.
std::size_t bytesOf(const std::vector<TextBoundingBox>& boxes)
{
    constexpr std::size_t headerOfText = 32;
    std::size_t bytes = 0;
    for (const TextBoundingBox& box : boxes)
        bytes += sizeof(box) + headerOfText + sizeof(QChar) * static_cast<std::size_t>(box.text.size());
    return bytes;
}

/// The page's text with its word boxes, if they are wanted; absent where it costs too much or the reading was
/// cancelled.
std::optional<PageText> readPage(
    int index, pdf::PDFPage& page, const pdf::Cancellation& cancellation, WordBoxes wanted,
    const pdf::ProcessorBudget& budget)
{
    const auto layer = page.text(cancellation);
    if (!layer)
        return std::nullopt;
    const QString& text = layer->string();
    if (isBlank(text))
        return withoutText(index);
    std::optional<std::vector<TextBoundingBox>> boxes;
    if (wanted == WordBoxes::none)
        boxes.emplace();
    else if (wanted == WordBoxes::all)
        boxes = extractBoundingBoxes(text, page, budget);
    if (budget.isSpent())
        return std::nullopt;
    return PageText(index, text, false, std::move(boxes));
}

pdf::Result<std::shared_ptr<pdf::PDFDocument>> openUnlocked(
    const QString& path, const std::optional<QString>& password, const pdf::Cancellation& cancellation)
{
    auto document = pdf::PDFDocument::open(path, cancellation);
    if (!document || !(*document)->isLocked())
        return document;
    const auto key = password ? password : DocumentPasswords::shared().password(path);
    if (!key)
        return pdf::PDFError{pdf::PDFError::Code::passwordRequired, QStringLiteral("a password is required")};
    if (!(*document)->unlock(*key))
        return pdf::PDFError{pdf::PDFError::Code::passwordRequired, QStringLiteral("the password is wrong")};
    return document;
}

/// The pages of one file, read by several threads that take them in turns.
class PageReading
{
public:
    PageReading(int pageCount, const pdf::Cancellation& cancellation, const ReadingOptions& options)
        : m_cancellation(cancellation)
        , m_options(options)
        , m_pages(static_cast<std::size_t>(pageCount))
    {}

    void takePart(pdf::PDFDocument& document)
    {
        const int pageCount = static_cast<int>(m_pages.size());
        for (int first = m_next.fetch_add(pagesPerTurn); first < pageCount;
             first = m_next.fetch_add(pagesPerTurn)) {
            const int last = std::min(first + pagesPerTurn, pageCount);
            for (int index = first; index < last && !isOver(); ++index) {
                read(document, index);
                if (m_options.onPageRead)
                    m_options.onPageRead();
            }
        }
    }

    bool isTooMuch() const { return m_textBytes > m_options.textMemory; }

    /// The pages that could be fetched, in page order.
    PDFTextExtractor::Reading takeResult()
    {
        PDFTextExtractor::Reading result{static_cast<std::int64_t>(m_pages.size()), {}};
        result.pageTexts.reserve(m_pages.size());
        for (std::size_t i = 0; i < m_pages.size(); ++i) {
            if (m_pages[i].text)
                result.pageTexts.push_back(*std::move(m_pages[i].text));
            if (m_pages[i].isAbandoned)
                result.abandonedPages.push_back(static_cast<std::int64_t>(i));
        }
        return result;
    }

private:
    struct Page
    {
        std::optional<PageText> text;
        bool isAbandoned = false;
    };

    bool isOver() const { return m_cancellation.isCancelled() || isTooMuch(); }

    WordBoxes wantedBoxes() const
    {
        if (!m_options.withBoxes)
            return WordBoxes::absent;
        return m_boxBytes < m_options.boxMemory ? WordBoxes::all : WordBoxes::none;
    }

    void count(const PageText& page)
    {
        m_textBytes += sizeof(QChar) * static_cast<std::size_t>(page.text.size());
        if (page.boundingBoxes)
            m_boxBytes += bytesOf(*page.boundingBoxes);
    }

    void read(pdf::PDFDocument& document, int index)
    {
        Page& result = m_pages[static_cast<std::size_t>(index)];
        const pdf::ProcessorBudget budget(m_options.pageTime);
        const auto page = document.page(index);
        if (page) {
            result.text = readPage(index, *page, m_cancellation, wantedBoxes(), budget);
            result.isAbandoned = !result.text;
            if (result.isAbandoned)
                result.text = withoutText(index);
            count(*result.text);
        } else {
            result.isAbandoned = budget.isSpent();
        }
    }

    const pdf::Cancellation m_cancellation;
    const ReadingOptions& m_options;
    std::atomic<int> m_next = 0;
    std::atomic<std::size_t> m_textBytes = 0;
    std::atomic<std::size_t> m_boxBytes = 0;
    std::vector<Page> m_pages;
};

template <typename Function>
void onMainThread(Function&& function)
{
    QMetaObject::invokeMethod(
        QCoreApplication::instance(), std::forward<Function>(function), Qt::QueuedConnection);
}

void publish(pdf::Result<PDFTextExtractor::Reading> reading, DocumentState* state)
{
    if (reading) {
        if (state)
            state->setPageTexts(std::move(reading->pageTexts));
    } else if (reading.error().code != pdf::PDFError::Code::cancelled) {
        std::puts("Failed to load PDF document");
        std::fflush(stdout);
    }
}

} // namespace

PDFTextExtractor::PDFTextExtractor()
    : m_actor(QStringLiteral("PDFTextExtractor"))
{}

PDFTextExtractor& PDFTextExtractor::shared()
{
    static auto* const extractor = new PDFTextExtractor;
    return *extractor;
}

pdf::Result<PDFTextExtractor::Reading> PDFTextExtractor::readDocument(
    const QString& path, const std::optional<QString>& password, const pdf::Cancellation& cancellation,
    const ReadingOptions& options)
{
    const auto document = openUnlocked(path, password, cancellation);
    if (!document)
        return document.error();
    const int pageCount = (*document)->pageCount();
    if (options.onPageCount)
        options.onPageCount(pageCount);

    PageReading reading(pageCount, cancellation, options);
    {
        const int threads = std::clamp(pageCount / pagesWorthAThread, 1, QThread::idealThreadCount());
        std::vector<std::jthread> helpers;
        for (int i = 1; i < threads; ++i) {
            helpers.emplace_back([&] {
                if (const auto again = (*document)->openAgain(cancellation))
                    reading.takePart(*again);
            });
        }
        reading.takePart(**document);
    }
    if (cancellation.isCancelled())
        return pdf::PDFError{pdf::PDFError::Code::cancelled, QStringLiteral("the reading was cancelled")};
    if (reading.isTooMuch())
        return pdf::PDFError{
            pdf::PDFError::Code::limitExceeded,
            QCoreApplication::translate(
                "PDFTextExtractor", "its text needs more memory than one file may use")};
    if (!(*document)->isFileIntact())
        return pdf::changedMeanwhile();
    return reading.takeResult();
}

QFuture<void> PDFTextExtractor::extractText(const QUrl& url, DocumentState* documentState)
{
    const QPointer<DocumentState> state(documentState);
    const pdf::Cancellation cancellation;
    const QPointer<ReadingGuard> guard(new ReadingGuard(documentState, cancellation));
    const auto done = std::make_shared<QPromise<void>>();
    done->start();
    m_actor.run([path = pdf::filePath(url), state, cancellation, guard, done] {
        const ReadingOptions options{.onPageCount = [&](std::int64_t pageCount) {
            onMainThread([state, cancellation, pageCount] {
                if (state && !cancellation.isCancelled())
                    state->setTotalPages(pageCount);
            });
        }};
        auto reading = readDocument(path, std::nullopt, cancellation, options);
        // Both writes go the same way, so the page count comes first however fast the reading was.
        onMainThread([state, cancellation, guard, done, reading = std::move(reading)]() mutable {
            // Since it was read the state may have come to name another file.
            publish(std::move(reading), cancellation.isCancelled() ? nullptr : state.data());
            delete guard;
            done->finish();
        });
    });
    return done->future();
}

QString PDFTextExtractor::getAllText(const PageTexts& pageTexts)
{
    const QLatin1String separator("\n\n");
    qsizetype size = 0;
    for (const PageText& page : pageTexts)
        size += page.text.size() + separator.size();
    QString result;
    result.reserve(size);
    for (const PageText& page : pageTexts) {
        if (&page != &pageTexts.front())
            result += separator;
        result += page.text;
    }
    return result;
}

} // namespace quillo
