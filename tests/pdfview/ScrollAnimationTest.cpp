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

TEST(ScrollAnimationTest, TellsWhenItHasCoveredTheWholeWay)
{
    QObject owner;
    ScrollAnimation animation(&owner);
    QSignalSpy rested(&animation, &ScrollAnimation::cameToRest);
    animation.add({0.0, 0.2});
    EXPECT_TRUE(rested.wait()) << "there was not a whole step to make";
    animation.add({0.0, 100.0});
    animation.stop();
    EXPECT_EQ(rested.count(), 1);
}

TEST(ScrollAnimationTest, JumpsInsteadOfMovingOn)
{
    QObject owner;
    ScrollAnimation animation(&owner);
    QPoint way;
    QObject::connect(&animation, &ScrollAnimation::moved, &owner, [&](QPoint step) { way += step; });
    animation.add({0.0, 100.0});
    animation.jump({20.0, -30.0});
    EXPECT_EQ(way, QPoint(20, -30));
    EXPECT_FALSE(animation.isRunning());
}

TEST(ScrollAnimationTest, IsQuickAtFirst)
{
    EXPECT_DOUBLE_EQ(ScrollAnimation::partLeft(0), 1.0);
    EXPECT_LT(ScrollAnimation::partLeft(50), 0.4);
    EXPECT_LT(ScrollAnimation::partLeft(250), 0.01);
}

} // namespace
} // namespace pdf
