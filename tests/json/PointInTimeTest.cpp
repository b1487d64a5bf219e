// SPDX-License-Identifier: AGPL-3.0-or-later
#include "json/PointInTime.h"

#include <gtest/gtest.h>

#include <cmath>

namespace quillo {
namespace {

TEST(PointInTimeTest, CountsSecondsFromTheStartOf2001)
{
    EXPECT_EQ(PointInTime::of(QDateTime(QDate(2001, 1, 1), QTime(0, 0), Qt::UTC)).seconds, 0.0);
    EXPECT_EQ(PointInTime::of(QDateTime::fromMSecsSinceEpoch(0, Qt::UTC)).seconds, -978307200.0);
}

TEST(PointInTimeTest, KeepsMillisecondsBothWays)
{
    const QDateTime time(QDate(2026, 11, 20), QTime(13, 14, 15, 167), Qt::UTC);
    EXPECT_EQ(PointInTime::of(time).toDateTime(), time);
}

TEST(PointInTimeTest, BoundsSecondsThatNoCalendarHolds)
{
    EXPECT_TRUE(PointInTime{1e300}.toDateTime().isValid());
    EXPECT_TRUE(PointInTime{-1e300}.toDateTime().isValid());
}

TEST(PointInTimeTest, TellsTheTimeOfTheSystem)
{
    const qint64 before = QDateTime::currentMSecsSinceEpoch();
    const QDateTime now = PointInTime::now().toDateTime();
    EXPECT_GE(now.toMSecsSinceEpoch(), before);
    EXPECT_LE(now.toMSecsSinceEpoch(), QDateTime::currentMSecsSinceEpoch() + 1);
}

TEST(PointInTimeTest, TellsTheTimeFinerThanInMilliseconds)
{
    // A single look may fall on a whole millisecond.
    bool isFiner = false;
    for (int look = 0; look < 1000; ++look) {
        const double milliseconds = PointInTime::now().seconds * 1000.0;
        isFiner = isFiner || std::abs(milliseconds - std::round(milliseconds)) > 0.01;
    }
    EXPECT_TRUE(isFiner);
}

} // namespace
} // namespace quillo
