// SPDX-License-Identifier: AGPL-3.0-or-later
#include "json/ReferenceDate.h"

#include <gtest/gtest.h>

namespace quillo {
namespace {

TEST(ReferenceDateTest, CountsSecondsFromTheStartOf2001)
{
    EXPECT_EQ(toReferenceSeconds(QDateTime(QDate(2001, 1, 1), QTime(0, 0), Qt::UTC)), 0.0);
    EXPECT_EQ(toReferenceSeconds(QDateTime::fromMSecsSinceEpoch(0, Qt::UTC)), -978307200.0);
}

TEST(ReferenceDateTest, KeepsMillisecondsBothWays)
{
    const QDateTime time(QDate(2026, 11, 20), QTime(13, 14, 15, 167), Qt::UTC);
    EXPECT_EQ(fromReferenceSeconds(toReferenceSeconds(time)), time);
}

TEST(ReferenceDateTest, BoundsSecondsThatNoCalendarHolds)
{
    EXPECT_TRUE(fromReferenceSeconds(1e300).isValid());
    EXPECT_TRUE(fromReferenceSeconds(-1e300).isValid());
}

} // namespace
} // namespace quillo
