// SPDX-License-Identifier: AGPL-3.0-or-later
#include "json/ReferenceDate.h"

#include <algorithm>
#include <cmath>

namespace quillo {
namespace {

constexpr qint64 referenceMillisecondsSinceUnixEpoch = 978'307'200'000;

// Far beyond any calendar date and far inside the range of a 64-bit count of milliseconds.
constexpr double largestSeconds = 8e12;

} // namespace

double toReferenceSeconds(const QDateTime& time)
{
    return static_cast<double>(time.toMSecsSinceEpoch() - referenceMillisecondsSinceUnixEpoch) / 1000.0;
}

QDateTime fromReferenceSeconds(double seconds)
{
    const double bounded = std::clamp(seconds, -largestSeconds, largestSeconds);
    return QDateTime::fromMSecsSinceEpoch(
        static_cast<qint64>(std::llround(bounded * 1000.0)) + referenceMillisecondsSinceUnixEpoch, Qt::UTC);
}

} // namespace quillo
