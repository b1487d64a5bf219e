// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <QDateTime>

#include <compare>

namespace quillo {

/// A point in time as it is stored and sent: seconds since 2001-01-01T00:00:00Z, a double with whatever
/// fraction it has, so that what was read is written unchanged. The Unix epoch is -978307200.
struct PointInTime
{
    double seconds = 0;

    /// As fine as the system's clock and a double are, which is finer than a microsecond.
    static PointInTime now();
    /// The time must be valid.
    static PointInTime of(const QDateTime& time);

    /// UTC, rounded to the nearest millisecond; bounded where no calendar goes.
    QDateTime toDateTime() const;

    auto operator<=>(const PointInTime&) const = default;
};

} // namespace quillo
