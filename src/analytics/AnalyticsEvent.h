// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "analytics/EventType.h"
#include "json/PointInTime.h"

#include <QString>
#include <QVariantMap>

#include <vector>

namespace quillo {

/// One tracked occurrence.
struct AnalyticsEvent
{
    /// The installation's identifier.
    QString deviceID;
    EventType eventType = EventType::error;
    /// Values that JSON can hold: strings, integers, finite numbers, Booleans, null, and lists and maps of
    /// these.
    QVariantMap metadata;
    PointInTime timestamp;

    bool operator==(const AnalyticsEvent&) const = default;
};

/// What one upload carries.
struct AnalyticsBatch
{
    QString deviceID;
    /// Oldest first.
    std::vector<AnalyticsEvent> events;

    bool operator==(const AnalyticsBatch&) const = default;
};

} // namespace quillo
