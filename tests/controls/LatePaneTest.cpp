// SPDX-License-Identifier: AGPL-3.0-or-later
#include "controls/LatePane.h"

#include <gtest/gtest.h>

#include <QTest>

namespace quillo {
namespace {

class CountingPane : public LatePane
{
public:
    int timesFilled = 0;
    bool wasFilledWhilePainting = false;

protected:
    void makeContent() override { ++timesFilled; }
    void paintEvent(QPaintEvent* event) override
    {
        LatePane::paintEvent(event);
        wasFilledWhilePainting |= timesFilled > 0 && !m_wasPainted;
        m_wasPainted = true;
    }

private:
    bool m_wasPainted = false;
};

TEST(LatePaneTest, IsFilledAfterItsFirstFrame)
{
    CountingPane pane;
    pane.resize(100, 100);
    EXPECT_FALSE(pane.isFilled());
    pane.show();
    ASSERT_TRUE(QTest::qWaitFor([&] { return pane.isFilled(); }));
    EXPECT_FALSE(pane.wasFilledWhilePainting);
    EXPECT_EQ(pane.timesFilled, 1);
}

TEST(LatePaneTest, IsFilledOnce)
{
    CountingPane pane;
    pane.fill();
    pane.fill();
    pane.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&pane));
    pane.grab();
    QCoreApplication::processEvents();
    EXPECT_EQ(pane.timesFilled, 1);
}

} // namespace
} // namespace quillo
