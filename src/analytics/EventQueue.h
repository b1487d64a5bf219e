// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "analytics/AnalyticsEvent.h"

#include <cstddef>
#include <mutex>
#include <vector>

namespace quillo {

/// The events that have not been delivered yet, oldest first. Any thread.
class EventQueue
{
public:
    /// Returns how many events there were before.
    std::size_t append(AnalyticsEvent event);
    /// Puts events back at the end, behind those that came meanwhile.
    void putBack(const std::vector<AnalyticsEvent>& events);
    /// Empties the queue.
    std::vector<AnalyticsEvent> takeAll();

    std::vector<AnalyticsEvent> events() const;
    bool isEmpty() const;

private:
    mutable std::mutex m_mutex;
    std::vector<AnalyticsEvent> m_events;
};

} // namespace quillo
