// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <chrono>
#include <functional>

class QObject;

namespace quillo {

/// Calls back later. Main thread only; nothing is called any more once the context has gone.
class AnalyticsTimers
{
public:
    using Callback = std::function<void()>;

    virtual ~AnalyticsTimers() = default;

    /// Calls once, after the delay.
    virtual void after(std::chrono::milliseconds delay, QObject* context, Callback callback) = 0;
    /// Calls again and again, first after one interval.
    virtual void every(std::chrono::milliseconds interval, QObject* context, Callback callback) = 0;
};

/// The timers of the main thread's event loop.
class EventLoopTimers : public AnalyticsTimers
{
public:
    void after(std::chrono::milliseconds delay, QObject* context, Callback callback) override;
    void every(std::chrono::milliseconds interval, QObject* context, Callback callback) override;
};

} // namespace quillo
