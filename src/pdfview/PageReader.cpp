// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdfview/PageReader.h"

#include "pdf/PDFDocument.h"
#include "pdf/PDFPage.h"
#include "pdf/TextLayer.h"
#include "pdfview/JobQueue.h"
#include "pdfview/PDFView.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace pdf {
namespace {

// How long the pages have to stand still.
constexpr std::chrono::milliseconds restTime(80);

// Pages beyond the visible ones that stay at hand.
constexpr int pagesAround = 2;

PageMatter readMatter(PDFDocument& document, int index, const Cancellation& cancellation)
{
    PageMatter matter;
    // The page may have been scrolled away while others were read.
    const auto page = cancellation.isCancelled() ? nullptr : document.page(index);
    if (!page)
        return matter;
    matter.links = page->links(cancellation);
    matter.text = page->text(cancellation);
    return matter;
}

} // namespace

PageReader::PageReader(PDFView& view)
    : m_view(view)
{
    m_rest.setSingleShot(true);
    m_rest.setInterval(restTime);
    connect(&m_rest, &QTimer::timeout, this, &PageReader::requestPages);
    connect(&view, &PDFView::documentChanged, this, &PageReader::startDocument);
    // The first pages come before everything else.
    connect(&view, &PDFView::firstPagesShown, this, &PageReader::follow);
    connect(&view, &PDFView::annotationsOutdated, this, &PageReader::outdate);
    connect(&view, &PDFView::pagesMoved, this, [this] {
        if (m_jobs && m_view.hasShownPages())
            follow();
    });
}

PageReader::~PageReader()
{
    for (const auto& [page, cancellation] : m_requested)
        cancellation.cancel();
}

const PageMatter* PageReader::page(int page) const
{
    const auto place = m_pages.find(page);
    return place == m_pages.end() ? nullptr : &place->second;
}

const TextLayer* PageReader::text(int page) const
{
    const PageMatter* matter = this->page(page);
    return matter ? matter->text.get() : nullptr;
}

void PageReader::startDocument()
{
    for (const auto& [page, cancellation] : m_requested)
        cancellation.cancel();
    m_requested.clear();
    m_pages.clear();
    m_outdated.clear();
    m_held.clear();
    m_rest.stop();
    m_jobs = m_view.document() ? std::make_unique<JobQueue>() : nullptr;
}

void PageReader::follow()
{
    forgetDistantPages();
    m_rest.start();
}

void PageReader::hold(const void* holder, std::set<int> pages)
{
    std::set<int>& held = m_held[holder];
    if (pages == held)
        return;
    held = std::move(pages);
    forgetDistantPages();
    for (const int page : held)
        request(page);
}

bool PageReader::isWanted(int page) const
{
    const auto holds = [page](const auto& entry) { return entry.second.contains(page); };
    if (std::any_of(m_held.begin(), m_held.end(), holds))
        return true;
    const auto visible = m_view.pageViewport().visiblePages();
    return page >= std::max(0, visible.first - pagesAround) &&
           page <= std::min(m_view.pageCount() - 1, visible.last + pagesAround);
}

void PageReader::outdate(int page)
{
    const auto requested = m_requested.find(page);
    if (requested != m_requested.end()) {
        requested->second.cancel();
        m_requested.erase(requested);
    } else if (!m_pages.contains(page)) {
        return;
    }
    // Something may be dragged over the page; its text is wanted when that has come to an end.
    m_outdated.insert(page);
    m_rest.start();
}

void PageReader::forgetDistantPages()
{
    std::erase_if(m_pages, [this](const auto& entry) { return !isWanted(entry.first); });
    std::erase_if(m_outdated, [this](int page) { return !isWanted(page); });
    std::erase_if(m_requested, [this](const auto& entry) {
        if (isWanted(entry.first))
            return false;
        entry.second.cancel();
        return true;
    });
}

void PageReader::requestPages()
{
    const auto visible = m_view.pageViewport().visiblePages();
    for (int page = visible.first; page <= visible.last; ++page)
        request(page);
    const std::set<int> outdated = m_outdated;
    for (const int page : outdated)
        request(page);
}

void PageReader::request(int page)
{
    const bool isAtHand = m_pages.contains(page) && !m_outdated.contains(page);
    if (!m_jobs || isAtHand || m_requested.contains(page))
        return;
    m_outdated.erase(page);
    const Cancellation cancellation;
    m_requested.emplace(page, cancellation);
    m_jobs->add(
        [document = m_view.document(), page, cancellation] {
            return readMatter(*document, page, cancellation);
        },
        [this, page, cancellation](const PageMatter& matter) {
            if (!cancellation.isCancelled())
                take(page, matter);
        });
}

void PageReader::take(int page, const PageMatter& matter)
{
    m_requested.erase(page);
    const auto before = std::exchange(m_pages[page], matter).text;
    const QString text = matter.text ? matter.text->string() : QString();
    if (before && before->string() != text)
        Q_EMIT textChanged(page, TextShift(before->string(), text));
    Q_EMIT pageRead(page);
}

} // namespace pdf
