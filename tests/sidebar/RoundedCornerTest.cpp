// SPDX-License-Identifier: AGPL-3.0-or-later
#include "sidebar/RoundedCorner.h"

#include <gtest/gtest.h>

namespace quillo {
namespace {

const QRectF rect(10, 20, 100, 60);

bool covers(const QPainterPath& path, QPointF fromCorner, QPointF direction)
{
    return path.contains(fromCorner + direction);
}

TEST(RoundedCornerTest, RoundsOnlyTheNamedCorners)
{
    const QPainterPath path = RoundedCorner{20, RectCorner::bottomLeft | RectCorner::topRight}.path(rect);
    EXPECT_TRUE(covers(path, rect.topLeft(), {1, 1}));
    EXPECT_FALSE(covers(path, rect.topRight(), {-1, 1}));
    EXPECT_FALSE(covers(path, rect.bottomLeft(), {1, -1}));
    EXPECT_TRUE(covers(path, rect.bottomRight(), {-1, -1}));
    EXPECT_EQ(path.boundingRect(), rect);
}

TEST(RoundedCornerTest, IsThePlainRectangleWithoutCorners)
{
    const QPainterPath path = RoundedCorner{20, {}}.path(rect);
    EXPECT_TRUE(covers(path, rect.topLeft(), {0.1, 0.1}));
    EXPECT_TRUE(covers(path, rect.bottomRight(), {-0.1, -0.1}));
}

TEST(RoundedCornerTest, CutsARadiusThatIsTooLarge)
{
    const RectCorners all =
        RectCorner::topLeft | RectCorner::topRight | RectCorner::bottomLeft | RectCorner::bottomRight;
    const QPainterPath path = RoundedCorner{1000, all}.path(rect);
    EXPECT_EQ(path.boundingRect(), rect);
    EXPECT_TRUE(path.contains(rect.center()));
    EXPECT_FALSE(covers(path, rect.topLeft(), {5, 5}));
}

} // namespace
} // namespace quillo
