// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <QHash>

#include <cstdint>
#include <mutex>

namespace pdf {

/// Counts for each page what may have changed its text since the document was opened: values of form fields,
/// and annotations that were added, changed or removed. Whoever keeps the text of a page keeps the count with
/// it, taken before the page was read. Any thread.
class TextChanges
{
public:
    void note(int page)
    {
        const std::lock_guard lock(m_mutex);
        ++m_pages[page];
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
        return m_allPages + m_pages.value(page);
    }

private:
    mutable std::mutex m_mutex;
    QHash<int, std::uint64_t> m_pages;
    std::uint64_t m_allPages = 0;
};

} // namespace pdf
