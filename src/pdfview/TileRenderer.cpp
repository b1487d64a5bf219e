// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdfview/TileRenderer.h"

#include "pdf/Limits.h"
#include "pdf/PDFDisplayList.h"
#include "pdf/PDFDocument.h"
#include "pdf/PDFPage.h"
#include "pdfview/RenderThreads.h"

#include <QCache>

#include <algorithm>
#include <chrono>
#include <list>
#include <map>
#include <mutex>
#include <optional>
#include <set>
#include <utility>

namespace pdf {
namespace {

// What a page may take to be interpreted, and again each of its tiles, on the busiest of machines. What keeps
// the processor busy the engine gives up much earlier.
constexpr std::chrono::seconds longestTime(60);

// Pages whose display lists stay although none of their tiles is wanted.
constexpr std::size_t keptPages = 6;

/// The drawing operations of a page. Without content when the page cannot be shown.
struct PageContent
{
    int page = 0;
    QSizeF size;
    QTransform pageToDisplay;
    std::optional<PDFDisplayList> content;
    std::optional<PDFDisplayList> annotations;
    bool hasCurrentAnnotations = true;

    bool hasPictures() const { return content && content->hasPictures(); }
    std::size_t bytes() const
    {
        return (content ? content->bytes() : 0) + (annotations ? annotations->bytes() : 0);
    }
};

PageContent readPage(PDFDocument& document, int index, const Cancellation& cancellation)
{
    PageContent result;
    result.page = index;
    const auto page = document.page(index);
    if (!page)
        return result;
    result.size = page->displaySize();
    result.pageToDisplay = page->pageToDisplay();
    if (auto list = page->contentDisplayList(cancellation))
        result.content = std::move(*list);
    // A page whose annotations are broken is shown without them.
    if (auto list = page->annotationDisplayList(cancellation))
        result.annotations = std::move(*list);
    return result;
}

PageContent readAnnotations(PDFDocument& document, const PageContent& old, const Cancellation& cancellation)
{
    PageContent result = old;
    result.annotations.reset();
    result.hasCurrentAnnotations = true;
    if (const auto page = document.page(old.page)) {
        if (auto list = page->annotationDisplayList(cancellation))
            result.annotations = std::move(*list);
    }
    return result;
}

/// Draws the page's content where there is no picture of it yet, and its annotations on top. Null when it
/// took too long, cost too much or was abandoned.
QImage drawTile(const PageContent& page, const Tile& tile, QImage& content, const Cancellation& cancellation)
{
    const double scale = tile.isWholePage() ? wholePageScale(page.size) : tile.scale;
    const QRect rect = tileRect(tile, pixelSize(page.size, scale));
    if (content.isNull()) {
        QImage image(rect.size(), QImage::Format_RGB32);
        if (image.isNull())
            return image;
        image.fill(Qt::white);
        if (!page.content->draw(image, rect.topLeft(), scale, cancellation))
            return {};
        content = image;
    }
    QImage image = content;
    if (page.annotations && !page.annotations->draw(image, rect.topLeft(), scale, cancellation))
        return {};
    return image;
}

} // namespace

/// What the renderer and the jobs on the render threads share; it lives until the last job has ended.
class TileRenderer::Queue : public std::enable_shared_from_this<Queue>
{
public:
    explicit Queue(std::shared_ptr<PDFDocument> document)
        : m_document(std::move(document))
    {}

    void want(std::vector<Tile> tiles)
    {
        const std::lock_guard lock(m_mutex);
        m_wanted = std::move(tiles);
        for (Job& job : m_running) {
            const auto place = std::find(m_wanted.begin(), m_wanted.end(), job.tile);
            job.tileIsWanted = place != m_wanted.end();
            if (job.tileIsWanted) {
                // What was abandoned cannot be taken up again; it is drawn anew.
                if (!job.isAbandoned)
                    m_wanted.erase(place);
            } else if (!(job.readsPage && isPageWanted(job.tile.page))) {
                job.isAbandoned = true;
                job.cancellation.cancel();
            }
        }
        schedule();
    }

    void refreshAnnotations(int page)
    {
        const std::lock_guard lock(m_mutex);
        m_changingPages.insert(page);
        abandon(page);
        std::erase_if(m_results, [page](const Result& result) {
            const auto* drawn = std::get_if<TileDrawn>(&result);
            return drawn && drawn->tile.page == page;
        });
        for (Content& content : m_kept) {
            if (content->page != page)
                continue;
            auto outdated = std::make_shared<PageContent>(*content);
            outdated->hasCurrentAnnotations = false;
            content = std::move(outdated);
        }
    }

    void refreshPage(int page)
    {
        const std::lock_guard lock(m_mutex);
        abandon(page);
        std::erase_if(m_results, [page](const Result& result) {
            return std::visit([](const auto& value) { return pageOf(value); }, result) == page;
        });
        std::erase_if(m_kept, [page](const Content& content) { return content->page == page; });
        m_unpackedScales.erase(page);
        for (const Tile& tile : m_contentPictures.keys()) {
            if (tile.page == page)
                m_contentPictures.remove(tile);
        }
    }

    std::vector<Result> takeResults()
    {
        const std::lock_guard lock(m_mutex);
        return std::exchange(m_results, {});
    }

    void setNotifier(std::function<void()> notify)
    {
        const std::lock_guard lock(m_mutex);
        m_notify = std::move(notify);
        if (m_notify && !m_results.empty())
            m_notify();
    }

private:
    struct Job
    {
        Tile tile;
        Cancellation cancellation;
        bool readsPage = false;
        bool tileIsWanted = true;
        bool isAbandoned = false;
    };
    using Lock = std::unique_lock<std::mutex>;
    using Content = std::shared_ptr<const PageContent>;

    /// On a render thread: one tile, and its page where that was not read yet.
    void workOnce()
    {
        Lock lock(m_mutex);
        if (const auto tile = takeNext()) {
            const auto job = m_running.insert(m_running.end(), Job{*tile, {}, false, true, false});
            Content content = kept(tile->page);
            if (!content || !content->hasCurrentAnnotations)
                content = read(*job, content, lock);
            if (content && job->tileIsWanted && exists(*tile, *content))
                draw(*job, *content, lock);
            m_running.erase(job);
            --m_scheduled;
            schedule();
        } else {
            // All that is wanted waits for a job that runs, and which then schedules again.
            --m_scheduled;
        }
    }

    /// What there was before only wants new annotations. Null when there is nothing to draw.
    Content read(Job& job, const Content& old, Lock& lock)
    {
        const int page = job.tile.page;
        m_pageBeingRead = page;
        job.readsPage = true;
        const Cancellation cancellation = job.cancellation = Cancellation::after(longestTime);
        lock.unlock();
        auto content = std::make_shared<const PageContent>(
            old ? readAnnotations(*m_document, *old, cancellation)
                : readPage(*m_document, page, cancellation));
        lock.lock();
        m_pageBeingRead = -1;
        job.readsPage = false;
        if (job.isAbandoned)
            return nullptr;
        if (!content->size.isEmpty())
            report(PageSized{page, content->size, content->pageToDisplay, content->hasPictures()});
        if (!content->content) {
            report(PageFailed{page});
            return nullptr;
        }
        keep(content);
        // The tiles that waited for this page, and the next page to be read.
        schedule();
        return content;
    }

    void draw(Job& job, const PageContent& content, Lock& lock)
    {
        const Tile tile = job.tile;
        const Cancellation cancellation = job.cancellation = Cancellation::after(longestTime);
        const bool isChanging = m_changingPages.contains(tile.page);
        const QImage* known = m_contentPictures.object(tile);
        QImage contentPicture = known ? *known : QImage();
        lock.unlock();
        QImage image = drawTile(content, tile, contentPicture, cancellation);
        lock.lock();
        if (isChanging && !contentPicture.isNull())
            m_contentPictures.insert(tile, new QImage(contentPicture), contentPicture.sizeInBytes());
        if (job.isAbandoned)
            return;
        if (isKept(tile.page))
            m_unpackedScales[tile.page] = tile.scale;
        if (image.isNull())
            report(PageFailed{tile.page});
        else
            report(TileDrawn{tile, std::move(image)});
    }

    static int pageOf(const PageSized& result) { return result.page; }
    static int pageOf(const TileDrawn& result) { return result.tile.page; }
    static int pageOf(const PageFailed& result) { return result.page; }

    /// A tile may have been wanted when the page was thought to have another shape. The small picture of a
    /// page with pictures would only keep the sharp one waiting.
    static bool exists(const Tile& tile, const PageContent& page)
    {
        if (tile.isWholePage())
            return !page.hasPictures();
        return !tileRect(tile, pixelSize(page.size, tile.scale)).isEmpty();
    }

    // All below is to be called with the lock held.

    /// Whatever runs for the page comes to nothing.
    void abandon(int page)
    {
        for (Job& job : m_running) {
            if (job.tile.page == page) {
                job.isAbandoned = true;
                job.cancellation.cancel();
            }
        }
    }

    /// Puts as many threads to work as there may be work for.
    void schedule()
    {
        const int most = std::min(RenderThreads::shared().count(), static_cast<int>(m_wanted.size()));
        for (; m_scheduled < most; ++m_scheduled)
            RenderThreads::shared().start([self = shared_from_this()] { self->workOnce(); });
    }

    /// The most urgent tile that can be begun now. Pages are read one at a time, since the document admits no
    /// more; meanwhile the other threads draw.
    std::optional<Tile> takeNext()
    {
        const auto canBegin = [this](const Tile& tile) {
            const bool isRunning = std::any_of(
                m_running.begin(), m_running.end(), [&](const Job& job) { return job.tile == tile; });
            return !isRunning && (m_pageBeingRead < 0 || isKept(tile.page)) && !waitsForPictures(tile);
        };
        const auto place = std::find_if(m_wanted.begin(), m_wanted.end(), canBegin);
        if (place == m_wanted.end())
            return std::nullopt;
        const Tile tile = *place;
        m_wanted.erase(place);
        return tile;
    }

    /// The first tile of a page at a scale unpacks the page's pictures for all of them. Another one that ran
    /// beside it would do the same over again, while a tile of another page may use the time.
    bool waitsForPictures(const Tile& tile) const
    {
        const auto content = std::find_if(
            m_kept.begin(), m_kept.end(), [&](const Content& kept) { return kept->page == tile.page; });
        if (content == m_kept.end() || !(*content)->hasPictures())
            return false;
        const auto unpacked = m_unpackedScales.find(tile.page);
        if (unpacked != m_unpackedScales.end() && unpacked->second == tile.scale)
            return false;
        return std::any_of(m_running.begin(), m_running.end(), [&](const Job& job) {
            return job.tile.page == tile.page && job.tile.scale == tile.scale && !job.isAbandoned;
        });
    }

    bool isPageWanted(int page) const
    {
        return std::any_of(
            m_wanted.begin(), m_wanted.end(), [&](const Tile& tile) { return tile.page == page; });
    }

    bool isKept(int page) const
    {
        return std::any_of(m_kept.begin(), m_kept.end(), [&](const Content& content) {
            return content->page == page && content->hasCurrentAnnotations;
        });
    }

    /// The page's content, which now counts as used, or null.
    Content kept(int page)
    {
        const auto place = std::find_if(
            m_kept.begin(), m_kept.end(), [&](const Content& content) { return content->page == page; });
        if (place == m_kept.end())
            return nullptr;
        m_kept.splice(m_kept.begin(), m_kept, place);
        return m_kept.front();
    }

    void keep(const Content& content)
    {
        std::erase_if(m_kept, [&](const Content& old) { return old->page == content->page; });
        m_kept.push_front(content);
        std::size_t bytes = 0;
        for (const Content& old : m_kept)
            bytes += old->bytes();
        auto place = m_kept.end();
        while ((m_kept.size() > keptPages || bytes > limits::kept::displayLists) &&
               place != std::next(m_kept.begin())) {
            --place;
            if (isPageWanted((*place)->page))
                continue;
            bytes -= (*place)->bytes();
            m_unpackedScales.erase((*place)->page);
            place = m_kept.erase(place);
        }
    }

    void report(Result result)
    {
        m_results.push_back(std::move(result));
        if (m_results.size() == 1 && m_notify)
            m_notify();
    }

    const std::shared_ptr<PDFDocument> m_document;
    std::mutex m_mutex;
    std::function<void()> m_notify;
    std::vector<Tile> m_wanted;
    std::list<Job> m_running;
    /// Jobs handed to the render threads that have not ended.
    int m_scheduled = 0;
    int m_pageBeingRead = -1;
    /// The last used one first.
    std::list<Content> m_kept;
    /// Of these pages, the scale for which their pictures were unpacked last.
    std::map<int, double> m_unpackedScales;
    std::vector<Result> m_results;
    /// Pages whose annotations have changed and may do so again.
    std::set<int> m_changingPages;
    /// Of the tiles of these pages, without annotations.
    QCache<Tile, QImage> m_contentPictures{static_cast<qsizetype>(limits::kept::contentTiles)};
};

TileRenderer::TileRenderer(std::shared_ptr<PDFDocument> document)
    : m_queue(std::make_shared<Queue>(std::move(document)))
{}

TileRenderer::~TileRenderer()
{
    m_queue->setNotifier({});
    m_queue->want({});
}

void TileRenderer::want(std::vector<Tile> tiles)
{
    m_queue->want(std::move(tiles));
}

void TileRenderer::refreshAnnotations(int page)
{
    m_queue->refreshAnnotations(page);
}

void TileRenderer::refreshPage(int page)
{
    m_queue->refreshPage(page);
}

std::vector<TileRenderer::Result> TileRenderer::takeResults()
{
    return m_queue->takeResults();
}

void TileRenderer::setNotifier(std::function<void()> notify)
{
    m_queue->setNotifier(std::move(notify));
}

} // namespace pdf
