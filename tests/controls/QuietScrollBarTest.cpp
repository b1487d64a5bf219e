// SPDX-License-Identifier: AGPL-3.0-or-later
#include "controls/QuietScrollBar.h"

#include <gtest/gtest.h>

#include <QStyle>
#include <QStyleOptionSlider>
#include <QTest>

namespace quillo {
namespace {

class QuietScrollBarTest : public testing::Test
{
protected:
    QuietScrollBarTest()
        : m_bar(Qt::Vertical)
    {
        m_bar.resize(m_bar.sizeHint().width(), 400);
        m_bar.setRange(0, 1200);
        m_bar.setPageStep(400);
        m_bar.show();
    }

    class Bar : public QuietScrollBar
    {
    public:
        using QuietScrollBar::QuietScrollBar;
        QRect handle() const
        {
            QStyleOptionSlider option;
            initStyleOption(&option);
            return style()->subControlRect(QStyle::CC_ScrollBar, &option, QStyle::SC_ScrollBarSlider, this);
        }
    };

    Bar m_bar;
};

TEST_F(QuietScrollBarTest, ShowsHowMuchOfTheWholeIsVisible)
{
    EXPECT_EQ(m_bar.handle().height(), 100);
    EXPECT_EQ(m_bar.handle().top(), 0);
    m_bar.setValue(1200);
    EXPECT_EQ(m_bar.handle().bottom(), 399);
}

TEST_F(QuietScrollBarTest, KeepsItsHandleLargeEnoughToGrab)
{
    m_bar.setRange(0, 100'000'000);
    EXPECT_GE(m_bar.handle().height(), 30);
}

TEST_F(QuietScrollBarTest, FollowsTheDraggedHandle)
{
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&m_bar));
    const QPoint grip = m_bar.handle().center();
    QTest::mousePress(&m_bar, Qt::LeftButton, {}, grip);
    QMouseEvent move(
        QEvent::MouseMove, QPointF(grip + QPoint(0, 150)), m_bar.mapToGlobal(QPointF(grip + QPoint(0, 150))),
        Qt::NoButton, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&m_bar, &move);
    EXPECT_EQ(m_bar.value(), 600);
    QTest::mouseRelease(&m_bar, Qt::LeftButton, {}, grip + QPoint(0, 150));
}

TEST_F(QuietScrollBarTest, TurnsAPageWhereTheGrooveIsPressed)
{
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&m_bar));
    QTest::mouseClick(&m_bar, Qt::LeftButton, {}, {7, 390});
    EXPECT_EQ(m_bar.value(), 400);
}

} // namespace
} // namespace quillo
