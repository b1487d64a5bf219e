// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <cstdint>
#include <mutex>
#include <new>
#include <unordered_map>

namespace pdf {

/// Counts for each page what may have changed its text since the document was opened: values of form fields,
/// and annotations that were added, changed or removed. Whoever keeps the text of a page keeps the count with
/// it, taken before the page was read. Noting a change never fails. Any thread.
class TextChanges
{
public:
    void note(int page)
    {
        const std::lock_guard lock(m_mutex);
        try {
            ++m_pages[page];
        } catch (const std::bad_alloc&) {
            // Without the memory to say which page it is, it may be any.
            ++m_allPages;
        }
    }
    void noteAllPages()
    {
        const std::lock_guard lock(m_mutex);
        ++m_allPages;
    }

    /// 0 while the page has the text that its file has.
    std::uint64_t count(int page) const
    {
        const std::lock_guard lock(m_mutex);
        const auto own = m_pages.find(page);
        return m_allPages + (own == m_pages.end() ? 0 : own->second);
    }

private:
    mutable std::mutex m_mutex;
    std::unordered_map<int, std::uint64_t> m_pages;
    std::uint64_t m_allPages = 0;
};

} // namespace pdf
