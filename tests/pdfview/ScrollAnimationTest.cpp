// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdfview/ScrollAnimation.h"

#include <gtest/gtest.h>

#include <QObject>
#include <QSignalSpy>
#include <QTest>

namespace pdf {
namespace {

TEST(ScrollAnimationTest, CoversTheWholeDistanceInSmallerSteps)
{
    QObject owner;
    ScrollAnimation animation(&owner);
    QPoint way;
    int steps = 0;
    QObject::connect(&animation, &ScrollAnimation::moved, &owner, [&](QPoint step) {
        way += step;
        ++steps;
    });
    animation.add({-7.3, 100.0});
    animation.add({0.0, 20.0});
    ASSERT_TRUE(QTest::qWaitFor([&] { return !animation.isRunning(); }));
    EXPECT_EQ(way, QPoint(-7, 120));
    EXPECT_GT(steps, 1);
}

TEST(ScrollAnimationTest, StopsAtOnce)
{
    QObject owner;
    ScrollAnimation animation(&owner);
    const QSignalSpy spy(&animation, &ScrollAnimation::moved);
    animation.add({0.0, 100.0});
    animation.stop();
    EXPECT_FALSE(animation.isRunning());
    QCoreApplication::processEvents();
    EXPECT_EQ(spy.count(), 0);
}

TEST(ScrollAnimationTest, IsQuickAtFirst)
{
    EXPECT_DOUBLE_EQ(ScrollAnimation::partLeft(0), 1.0);
    EXPECT_LT(ScrollAnimation::partLeft(50), 0.4);
    EXPECT_LT(ScrollAnimation::partLeft(250), 0.01);
}

} // namespace
} // namespace pdf
