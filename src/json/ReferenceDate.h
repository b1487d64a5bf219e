// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <QDateTime>

namespace quillo {

// Points in time travel through JSON as seconds since 2001-01-01T00:00:00Z, a double with millisecond
// precision kept. The Unix epoch is -978307200.

double toReferenceSeconds(const QDateTime& time);

/// UTC, rounded to the nearest millisecond.
QDateTime fromReferenceSeconds(double seconds);

} // namespace quillo
