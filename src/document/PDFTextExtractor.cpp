// SPDX-License-Identifier: AGPL-3.0-or-later
#include "document/PDFTextExtractor.h"

#include "document/DocumentPasswords.h"
#include "pdf/FileName.h"
#include "pdf/PDFDocument.h"
#include "pdf/PDFPage.h"

#include <QCoreApplication>
#include <QPointer>
#include <QPromise>
#include <QTextBoundaryFinder>
#include <QThread>

#include <algorithm>
#include <atomic>
#include <chrono>
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

// The time for one page's text, a thousand times what a full page takes. It halves with every page that is
// given up, which bounds the time that pages of a hostile file can cost together to twice this.
constexpr std::chrono::milliseconds firstPatience{2000};
constexpr std::chrono::milliseconds leastPatience{2};

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

/// Calls `use` with each run of characters between white space.
template <typename Use>
void forEachWord(const QString& text, Use&& use)
{
    qsizetype start = 0;
    for (qsizetype i = 0; i <= text.size(); ++i) {
        if (i < text.size() && !text[i].isSpace())
            continue;
        if (i > start)
            use(text.mid(start, i - start));
        start = i + 1;
    }
}

/// A box for every word. Each box covers the first characters of the page, as many as the word has: boxes
/// tell how much text there is and are not used to find it on the page. Words of one length share one look at
/// the page, so all boxes together cost time linear in the page's characters.
std::vector<TextBoundingBox> extractBoundingBoxes(const QString& text, pdf::PDFPage& page)
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
    });
    return result;
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
    PageReading(int pageCount, const pdf::Cancellation& cancellation)
        : m_cancellation(cancellation)
        , m_pages(static_cast<std::size_t>(pageCount))
    {}

    void takePart(pdf::PDFDocument& document)
    {
        const int pageCount = static_cast<int>(m_pages.size());
        for (int first = m_next.fetch_add(pagesPerTurn); first < pageCount;
             first = m_next.fetch_add(pagesPerTurn)) {
            const int last = std::min(first + pagesPerTurn, pageCount);
            for (int index = first; index < last && !m_cancellation.isCancelled(); ++index) {
                if (const auto page = document.page(index))
                    m_pages[static_cast<std::size_t>(index)] = readPage(index, *page);
            }
        }
    }

    /// The pages that could be fetched, in page order.
    PageTexts takeResult()
    {
        PageTexts result;
        result.reserve(m_pages.size());
        for (auto& page : m_pages) {
            if (page)
                result.push_back(std::move(*page));
        }
        return result;
    }

private:
    PageText readPage(int index, pdf::PDFPage& page)
    {
        const auto limited = m_cancellation.limitedTo(m_patience.load());
        PageText text = PDFTextExtractor::readPage(index, page, limited);
        if (limited.isCancelled())
            m_patience = std::max(m_patience.load() / 2, leastPatience);
        return text;
    }

    const pdf::Cancellation m_cancellation;
    std::atomic<int> m_next = 0;
    std::atomic<std::chrono::milliseconds> m_patience = firstPatience;
    std::vector<std::optional<PageText>> m_pages;
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
    static PDFTextExtractor extractor;
    return extractor;
}

PageText
PDFTextExtractor::readPage(std::int64_t pageNumber, pdf::PDFPage& page, const pdf::Cancellation& cancellation)
{
    auto text = page.string(cancellation);
    if (!text || isBlank(*text))
        return PageText(pageNumber, QString(), false, std::nullopt);
    auto boxes = extractBoundingBoxes(*text, page);
    return PageText(pageNumber, std::move(*text), false, std::move(boxes));
}

pdf::Result<PDFTextExtractor::Reading> PDFTextExtractor::readDocument(
    const QString& path, const std::optional<QString>& password, const pdf::Cancellation& cancellation,
    const std::function<void(std::int64_t)>& onPageCount)
{
    const auto document = openUnlocked(path, password, cancellation);
    if (!document)
        return document.error();
    const int pageCount = (*document)->pageCount();
    if (onPageCount)
        onPageCount(pageCount);

    PageReading reading(pageCount, cancellation);
    {
        const int threads = std::clamp(pageCount / pagesWorthAThread, 1, QThread::idealThreadCount());
        std::vector<std::jthread> helpers;
        for (int i = 1; i < threads; ++i) {
            helpers.emplace_back([&] {
                const auto copy = openUnlocked(path, password, cancellation);
                // The file may have been replaced since; then its pages are not ours.
                if (copy && (*copy)->pageCount() == pageCount)
                    reading.takePart(**copy);
            });
        }
        reading.takePart(**document);
    }
    if (cancellation.isCancelled())
        return pdf::PDFError{pdf::PDFError::Code::cancelled, QStringLiteral("reading took too long")};
    return Reading{pageCount, reading.takeResult()};
}

QFuture<void> PDFTextExtractor::extractText(const QUrl& url, DocumentState* documentState)
{
    const QPointer<DocumentState> state(documentState);
    const pdf::Cancellation cancellation;
    QObject::connect(documentState, &QObject::destroyed, [cancellation] { cancellation.cancel(); });
    const auto done = std::make_shared<QPromise<void>>();
    done->start();
    m_actor.run([path = pdf::filePath(url), state, cancellation, done] {
        auto reading = readDocument(path, std::nullopt, cancellation, [&](std::int64_t pageCount) {
            onMainThread([state, pageCount] {
                if (state)
                    state->setTotalPages(pageCount);
            });
        });
        // Both writes go the same way, so the page count comes first however fast the reading was.
        onMainThread([state, done, reading = std::move(reading)]() mutable {
            publish(std::move(reading), state);
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
