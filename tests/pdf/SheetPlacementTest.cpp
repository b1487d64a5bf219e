// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/SheetPlacement.h"

#include <gtest/gtest.h>

#include <QRectF>

namespace pdf {
namespace {

constexpr QSizeF portrait(600, 800);

class SheetPlacementTest : public testing::Test
{
protected:
    SheetPlacementTest() { m_layout.paper = portrait; }

    /// Where the page lies on its sheet.
    QRectF place(QSizeF page) const
    {
        return placeOnSheet(m_layout, page).displayToSheet.mapRect(QRectF(QPointF(), page));
    }
    /// Where the upper left corner of the page lies.
    QPointF corner(QSizeF page) const { return placeOnSheet(m_layout, page).displayToSheet.map(QPointF()); }

    PrintLayout m_layout;
};

TEST_F(SheetPlacementTest, LeavesAPageOfThePapersSizeWhereItIs)
{
    EXPECT_EQ(place(portrait), QRectF(QPointF(), portrait));
    EXPECT_EQ(corner(portrait), QPointF(0, 800));
}

TEST_F(SheetPlacementTest, ShrinksAPageThatIsTooBigAndCentresIt)
{
    EXPECT_EQ(place({1200, 1200}), QRectF(0, 100, 600, 600));
    EXPECT_DOUBLE_EQ(placeOnSheet(m_layout, {1200, 1200}).scale, 0.5);
}

TEST_F(SheetPlacementTest, EnlargesOnlyWhenItIsAsked)
{
    EXPECT_EQ(place({300, 400}), QRectF(150, 200, 300, 400));
    m_layout.scaling = PageScaling::fit;
    EXPECT_EQ(place({300, 400}), QRectF(QPointF(), portrait));
}

TEST_F(SheetPlacementTest, KeepsTheActualSizeOfAPageThatIsTooBig)
{
    m_layout.scaling = PageScaling::actualSize;
    EXPECT_EQ(place({700, 1000}), QRectF(-50, -100, 700, 1000));
}

TEST_F(SheetPlacementTest, FitsIntoTheMargins)
{
    m_layout.margins = QMarginsF(60, 10, 40, 90);
    EXPECT_EQ(place({500, 700}), QRectF(60, 90, 500, 700));
    EXPECT_EQ(place({1000, 1400}), QRectF(60, 90, 500, 700));
}

TEST_F(SheetPlacementTest, TakesNoNoticeOfMarginsThatLeaveNothing)
{
    m_layout.margins = QMarginsF(400, 0, 400, 0);
    EXPECT_EQ(place(portrait), QRectF(QPointF(), portrait));
}

TEST_F(SheetPlacementTest, TurnsAPageThatLiesAcrossThePaper)
{
    EXPECT_EQ(placeOnSheet(m_layout, {800, 600}).paper, portrait);
    EXPECT_EQ(place({800, 600}), QRectF(QPointF(), portrait));
    // Against the clock: what was at the top is at the left.
    EXPECT_EQ(corner({800, 600}), QPointF(0, 0));
}

TEST_F(SheetPlacementTest, TurnsThePaperInstead)
{
    m_layout.turning = PageTurning::paper;
    m_layout.margins = QMarginsF(10, 20, 30, 40);
    m_layout.scaling = PageScaling::fit;
    EXPECT_EQ(placeOnSheet(m_layout, {800, 600}).paper, QSizeF(800, 600));
    // The left edge of the paper has become the upper one.
    EXPECT_EQ(place({740, 560}), QRectF(40, 30, 740, 560));
    EXPECT_EQ(placeOnSheet(m_layout, {300, 400}).paper, portrait);
}

TEST_F(SheetPlacementTest, TurnsNothingWhereThatIsNotWanted)
{
    m_layout.turning = PageTurning::none;
    EXPECT_EQ(place({800, 600}), QRectF(0, 175, 600, 450));
}

TEST_F(SheetPlacementTest, TurnsNoSquare)
{
    EXPECT_EQ(corner({500.5, 500}), QPointF(49.75, 650));
}

} // namespace
} // namespace pdf
