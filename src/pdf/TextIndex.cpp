// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/TextIndex.h"

#include "pdf/Limits.h"
#include "pdf/PDFDocument.h"
#include "pdf/PDFPage.h"

#include <algorithm>
#include <chrono>
#include <thread>
#include <utility>

namespace pdf {
namespace {

// How soon somebody who waits notices that he was told not to.
constexpr std::chrono::milliseconds noticeTime(50);

CompactText readText(PDFDocument& document, int page, const Cancellation& cancellation)
{
    const auto object = document.page(page);
    const auto text = object ? object->string(cancellation) : std::nullopt;
    return text ? CompactText(*text) : CompactText();
}

} // namespace

std::shared_ptr<TextIndex> TextIndex::begin(const std::shared_ptr<PDFDocument>& document)
{
    std::shared_ptr<TextIndex> index(new TextIndex(document));
    // The thread ends by itself; nobody has to wait for it, least of all who closes a window.
    std::thread([index] { index->read(); }).detach();
    return index;
}

TextIndex::TextIndex(std::weak_ptr<PDFDocument> document)
    : m_document(std::move(document))
{}

void TextIndex::stop()
{
    m_stopping.cancel();
    m_changed.notify_all();
}

void TextIndex::read()
{
    std::shared_ptr<PDFDocument> reader;
    if (const auto document = m_document.lock())
        reader = document->openAgain(m_stopping);
    {
        const std::lock_guard lock(m_mutex);
        m_reader = std::move(reader);
    }
    const auto first = source(0);
    const int pageCount = first ? first->pageCount() : 0;
    {
        const std::lock_guard lock(m_mutex);
        m_pageCount = pageCount;
    }
    m_changed.notify_all();
    for (int page = 0; page < pageCount; ++page) {
        if (!readPage(page))
            return;
    }
    const std::lock_guard lock(m_mutex);
    const bool isAllKept =
        std::all_of(m_pages.begin(), m_pages.end(), [](const Page& page) { return page.text.has_value(); });
    if (isAllKept)
        m_reader.reset();
}

std::uint64_t TextIndex::changes(int page) const
{
    const auto document = m_document.lock();
    return document ? document->textChanges(page) : 0;
}

std::shared_ptr<PDFDocument> TextIndex::source(std::uint64_t changes) const
{
    const std::lock_guard lock(m_mutex);
    return m_reader && changes == 0 ? m_reader : m_document.lock();
}

void TextIndex::keep(Page& place, CompactText text, std::uint64_t changes)
{
    m_bytes -= place.text ? place.text->bytes() : 0;
    const bool isKept = m_bytes + text.bytes() <= limits::textIndex;
    m_bytes += isKept ? text.bytes() : 0;
    place = {isKept ? std::optional(std::move(text)) : std::nullopt, changes};
}

bool TextIndex::readPage(int page)
{
    const std::uint64_t changes = this->changes(page);
    const auto document = source(changes);
    if (!document)
        return false;
    CompactText text = readText(*document, page, m_stopping);
    if (m_stopping.isCancelled())
        return false;
    {
        const std::lock_guard lock(m_mutex);
        keep(m_pages.emplace_back(), std::move(text), changes);
    }
    m_changed.notify_all();
    return true;
}

bool TextIndex::isOver(const Cancellation& cancellation) const
{
    return m_stopping.isCancelled() || cancellation.isCancelled();
}

template <typename Condition>
bool TextIndex::waitUntil(
    std::unique_lock<std::mutex>& lock, const Cancellation& cancellation, Condition condition)
{
    while (!isOver(cancellation)) {
        if (m_changed.wait_for(lock, noticeTime, condition))
            return true;
    }
    return false;
}

std::optional<int> TextIndex::pageCount(const Cancellation& cancellation)
{
    std::unique_lock lock(m_mutex);
    if (!waitUntil(lock, cancellation, [this] { return m_pageCount.has_value(); }))
        return std::nullopt;
    return m_pageCount;
}

std::optional<CompactText> TextIndex::text(int page, const Cancellation& cancellation)
{
    const auto index = static_cast<std::size_t>(page);
    std::unique_lock lock(m_mutex);
    if (!waitUntil(lock, cancellation, [&] { return index < m_pages.size(); }))
        return std::nullopt;
    lock.unlock();
    const std::uint64_t changes = this->changes(page);
    lock.lock();
    if (m_pages[index].text && m_pages[index].changes == changes)
        return m_pages[index].text;
    lock.unlock();
    const auto document = source(changes);
    CompactText text = document ? readText(*document, page, cancellation) : CompactText();
    if (isOver(cancellation))
        return std::nullopt;
    lock.lock();
    keep(m_pages[index], text, changes);
    return text;
}

bool TextIndex::isAtHand(int page) const
{
    const std::uint64_t changes = this->changes(page);
    const std::lock_guard lock(m_mutex);
    const auto index = static_cast<std::size_t>(page);
    return index < m_pages.size() && m_pages[index].text && m_pages[index].changes == changes;
}

bool TextIndex::isComplete() const
{
    const std::lock_guard lock(m_mutex);
    return m_pageCount && m_pages.size() == static_cast<std::size_t>(*m_pageCount);
}

qsizetype TextIndex::bytes() const
{
    const std::lock_guard lock(m_mutex);
    return m_bytes;
}

} // namespace pdf
