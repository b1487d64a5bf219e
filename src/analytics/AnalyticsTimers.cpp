// SPDX-License-Identifier: AGPL-3.0-or-later
#include "analytics/AnalyticsTimers.h"

#include <QTimer>

#include <utility>

namespace quillo {

void EventLoopTimers::after(std::chrono::milliseconds delay, QObject* context, Callback callback)
{
    QTimer::singleShot(delay, Qt::PreciseTimer, context, std::move(callback));
}

void EventLoopTimers::every(std::chrono::milliseconds interval, QObject* context, Callback callback)
{
    auto* timer = new QTimer(context);
    timer->setTimerType(Qt::PreciseTimer);
    QObject::connect(timer, &QTimer::timeout, context, std::move(callback));
    timer->start(interval);
}

} // namespace quillo
