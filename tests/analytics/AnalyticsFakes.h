// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "analytics/AnalyticsTimers.h"
#include "analytics/AnalyticsTransport.h"

#include <QObject>
#include <QPointer>

#include <algorithm>
#include <utility>
#include <vector>

namespace quillo {

/// Timers that run when the test says how much time has passed.
class FakeTimers : public AnalyticsTimers
{
public:
    void after(std::chrono::milliseconds delay, QObject* context, Callback callback) override
    {
        m_timers.push_back({m_now + delay, std::chrono::milliseconds(0), context, std::move(callback)});
    }

    void every(std::chrono::milliseconds interval, QObject* context, Callback callback) override
    {
        m_timers.push_back({m_now + interval, interval, context, std::move(callback)});
    }

    void advance(std::chrono::milliseconds time)
    {
        const auto end = m_now + time;
        while (true) {
            const auto next = std::min_element(
                m_timers.begin(), m_timers.end(), [](const auto& a, const auto& b) { return a.due < b.due; });
            if (next == m_timers.end() || next->due > end)
                break;
            fire(static_cast<std::size_t>(next - m_timers.begin()));
        }
        m_now = end;
    }

    /// How many timers wait whose context is still there.
    std::size_t waiting() const
    {
        return static_cast<std::size_t>(std::count_if(
            m_timers.begin(), m_timers.end(), [](const auto& timer) { return !timer.context.isNull(); }));
    }

private:
    struct Timer
    {
        std::chrono::milliseconds due;
        std::chrono::milliseconds interval;
        QPointer<QObject> context;
        Callback callback;
    };

    void fire(std::size_t index)
    {
        const Timer timer = m_timers[index];
        m_now = timer.due;
        if (timer.interval.count() > 0)
            m_timers[index].due += timer.interval;
        else
            m_timers.erase(m_timers.begin() + static_cast<std::ptrdiff_t>(index));
        if (timer.context)
            timer.callback();
    }

    std::chrono::milliseconds m_now{0};
    std::vector<Timer> m_timers;
};

/// A transport that keeps requests until the test says how they end.
class FakeTransport : public AnalyticsTransport
{
public:
    void post(const AnalyticsRequest& request, Completion completion) override
    {
        requests.push_back(request);
        completions.push_back(std::move(completion));
    }

    void answerLast(int status) const { completions.back()({std::nullopt, status}); }
    void failLast(const QString& error) const { completions.back()({error, std::nullopt}); }

    std::vector<AnalyticsRequest> requests;
    std::vector<Completion> completions;
};

} // namespace quillo
