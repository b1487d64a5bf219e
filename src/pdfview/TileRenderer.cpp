// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdfview/TileRenderer.h"

#include "pdf/Limits.h"
#include "pdf/PDFDocument.h"
#include "pdfview/PageContent.h"
#include "pdfview/RenderThreads.h"
#include "pdfview/TilePicture.h"

#include <QCache>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <list>
#include <map>
#include <mutex>
#include <optional>
#include <set>
#include <utility>

namespace pdf {
namespace {

// Pages whose display lists stay although none of their tiles is wanted.
constexpr std::size_t keptPages = 6;

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
        const std::vector<Tile> waiting = std::exchange(m_wanted, std::move(tiles));
        for (const int page : std::exchange(m_refreshed, {}))
            putWaitingFirst(page, waiting);
        for (Job& job : m_running) {
            const auto place = std::find(m_wanted.begin(), m_wanted.end(), job.tile);
            job.tileIsWanted = place != m_wanted.end();
            if (job.tileIsWanted) {
                // What was abandoned cannot be taken up again, and what was begun before a refresh does not
                // show it; both are drawn anew.
                if (!job.isAbandoned && job.version == version(job.tile.page))
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
        ++m_versions[page];
        m_refreshed.insert(page);
        for (Result& result : m_results) {
            auto* drawn = std::get_if<TileDrawn>(&result);
            if (drawn && drawn->tile.page == page)
                drawn->isCurrent = false;
        }
    }

    void refreshPage(int page)
    {
        const std::lock_guard lock(m_mutex);
        for (Job& job : m_running) {
            if (job.tile.page == page) {
                job.isAbandoned = true;
                job.cancellation.cancel();
            }
        }
        std::erase_if(m_results, [page](const Result& result) {
            return std::visit([](const auto& value) { return pageOf(value); }, result) == page;
        });
        std::erase_if(m_kept, [page](const Content& content) { return content->page == page; });
        m_unpackedScales.erase(page);
        for (const Tile& tile : m_pictures.keys()) {
            if (tile.page == page)
                m_pictures.remove(tile);
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
        /// Of the annotations that it shows.
        int version = 0;
    };
    using Lock = std::unique_lock<std::mutex>;
    using Content = std::shared_ptr<const PageContent>;

    /// On a render thread: one tile, and its page where that was not read yet.
    void workOnce()
    {
        Lock lock(m_mutex);
        if (const auto tile = takeNext()) {
            const int present = version(tile->page);
            const auto job = m_running.insert(m_running.end(), Job{*tile, {}, false, true, false, present});
            Content content = kept(tile->page);
            if (!content || content->version != present)
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
        const Cancellation cancellation = job.cancellation = Cancellation();
        const int versionBefore = job.version;
        lock.unlock();
        PageContent result = old ? readAnnotations(*m_document, *old, cancellation)
                                 : readPage(*m_document, page, cancellation);
        result.version = versionBefore;
        auto content = std::make_shared<const PageContent>(std::move(result));
        lock.lock();
        m_pageBeingRead = -1;
        job.readsPage = false;
        if (job.isAbandoned)
            return nullptr;
        if (!old && !content->size.isEmpty())
            report(PageSized{page, content->size, content->pageToDisplay, content->hasPictures()});
        if (!content->content) {
            report(PageFailed{page, content->isFileChanged});
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
        const Cancellation cancellation = job.cancellation = Cancellation();
        const TilePicture* known = m_pictures.object(tile);
        TilePicture picture = known ? *known : TilePicture();
        lock.unlock();
        const bool isDrawn = drawTile(content, tile, picture, cancellation);
        lock.lock();
        if (job.isAbandoned)
            return;
        if (isKept(tile.page))
            m_unpackedScales[tile.page] = tile.scale;
        if (!isDrawn) {
            report(PageFailed{tile.page});
            return;
        }
        const QImage image = picture.whole;
        keep(tile, content, std::move(picture));
        report(TileDrawn{tile, image, job.version == version(tile.page)});
    }

    /// Pictures of pages that have no annotations, and none that come and go, are of no use later.
    void keep(const Tile& tile, const PageContent& content, TilePicture picture)
    {
        const bool isChanging = m_versions.contains(tile.page);
        if (!isChanging && !content.showsAnnotations())
            return;
        if (!isChanging)
            picture.content = {};
        const qsizetype bytes = picture.byteCount();
        m_pictures.insert(tile, new TilePicture(std::move(picture)), bytes);
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

    /// How many times the page's annotations have changed.
    int version(int page) const
    {
        const auto place = m_versions.find(page);
        return place == m_versions.end() ? 0 : place->second;
    }

    /// Where refreshes follow one another faster than all tiles of the page can be drawn, those that have
    /// waited since an earlier one keep their order before those that were begun meanwhile, so that each has
    /// its turn.
    void putWaitingFirst(int page, const std::vector<Tile>& waiting)
    {
        std::vector<std::size_t> places;
        std::vector<Tile> tiles;
        for (std::size_t i = 0; i < m_wanted.size(); ++i) {
            if (m_wanted[i].page == page) {
                places.push_back(i);
                tiles.push_back(m_wanted[i]);
            }
        }
        const auto turn = [&](const Tile& tile) { return std::find(waiting.begin(), waiting.end(), tile); };
        std::stable_sort(
            tiles.begin(), tiles.end(), [&](const Tile& a, const Tile& b) { return turn(a) < turn(b); });
        for (std::size_t i = 0; i < places.size(); ++i)
            m_wanted[places[i]] = tiles[i];
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
            return content->page == page && content->version == version(page);
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
    /// How many times the annotations of a page have changed, of the pages where they have.
    std::map<int, int> m_versions;
    /// Pages of which they have changed since tiles were wanted the last time.
    std::set<int> m_refreshed;
    QCache<Tile, TilePicture> m_pictures{static_cast<qsizetype>(limits::kept::annotatedTiles)};
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
