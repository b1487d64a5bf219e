// SPDX-License-Identifier: AGPL-3.0-or-later
#include "json/PointInTime.h"

#include <algorithm>
#include <chrono>
#include <cmath>

namespace quillo {
namespace {

constexpr std::chrono::seconds referenceSinceUnixEpoch{978'307'200};

// Far beyond any calendar date and far inside the range of a 64-bit count of milliseconds.
constexpr double largestSeconds = 8e12;

} // namespace

PointInTime PointInTime::now()
{
    // Subtracted as integers, before the double drops digits.
    const auto elapsed = std::chrono::system_clock::now().time_since_epoch() - referenceSinceUnixEpoch;
    return {std::chrono::duration<double>(elapsed).count()};
}

PointInTime PointInTime::of(const QDateTime& time)
{
    const std::chrono::milliseconds elapsed =
        std::chrono::milliseconds(time.toMSecsSinceEpoch()) - referenceSinceUnixEpoch;
    return {static_cast<double>(elapsed.count()) / 1000.0};
}

QDateTime PointInTime::toDateTime() const
{
    const double bounded = std::clamp(seconds, -largestSeconds, largestSeconds);
    const std::chrono::milliseconds elapsed(std::llround(bounded * 1000.0));
    return QDateTime::fromMSecsSinceEpoch((elapsed + referenceSinceUnixEpoch).count(), Qt::UTC);
}

} // namespace quillo
