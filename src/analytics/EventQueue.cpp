// SPDX-License-Identifier: AGPL-3.0-or-later
#include "analytics/EventQueue.h"

#include <utility>

namespace quillo {

std::size_t EventQueue::append(AnalyticsEvent event)
{
    const std::lock_guard guard(m_mutex);
    m_events.push_back(std::move(event));
    return m_events.size() - 1;
}

void EventQueue::putBack(const std::vector<AnalyticsEvent>& events)
{
    const std::lock_guard guard(m_mutex);
    m_events.insert(m_events.end(), events.begin(), events.end());
}

std::vector<AnalyticsEvent> EventQueue::takeAll()
{
    const std::lock_guard guard(m_mutex);
    return std::exchange(m_events, {});
}

std::vector<AnalyticsEvent> EventQueue::events() const
{
    const std::lock_guard guard(m_mutex);
    return m_events;
}

bool EventQueue::isEmpty() const
{
    const std::lock_guard guard(m_mutex);
    return m_events.empty();
}

} // namespace quillo
