// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdfview/PDFViewInput.h"

#include "pdfview/ViewSupport.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QNativeGestureEvent>
#include <QPointingDevice>
#include <QTest>
#include <QWheelEvent>

namespace pdf {
namespace {

class PDFViewInputTest : public PDFViewFixture
{
protected:
    void wheel(QPoint angle, Qt::KeyboardModifiers modifiers = Qt::NoModifier, QPointF place = {200, 250})
    {
        QWheelEvent event(
            place, m_view->viewport()->mapToGlobal(place), QPoint(), angle, Qt::NoButton, modifiers,
            Qt::NoScrollPhase, false);
        QApplication::sendEvent(m_view->viewport(), &event);
    }

    void pinch(double amount, QPointF place)
    {
        QNativeGestureEvent event(
            Qt::ZoomNativeGesture, QPointingDevice::primaryPointingDevice(), 2, place, place,
            m_view->viewport()->mapToGlobal(place), amount, QPointF());
        QApplication::sendEvent(m_view->viewport(), &event);
    }

    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QTest::keyClick(m_view.get(), key, modifiers);
    }

    /// The point of the first page under a place of the view, in page sizes.
    QPointF partOfPage(QPointF place)
    {
        const QRectF rect = m_view->pageRect(0);
        return {(place.x() - rect.x()) / rect.width(), (place.y() - rect.y()) / rect.height()};
    }

    static QByteArray documentOfWidths(const std::vector<int>& widths)
    {
        PDFWriter writer;
        for (std::size_t page = 0; page < widths.size(); ++page)
            addColouredPage(writer, colorOfPage(static_cast<int>(page)), {widths[page], 400});
        return writer.bytes();
    }

    /// From its left to its right edge.
    bool isInView(int page)
    {
        const QRectF rect = m_view->pageRect(page);
        return rect.left() >= 0 && rect.right() <= m_view->viewport()->width();
    }

    qint64 scrolled() const { return m_view->pageViewport().y(); }
    bool comesTo(qint64 y)
    {
        return QTest::qWaitFor([&] { return scrolled() == y; });
    }
};

TEST_F(PDFViewInputTest, ScrollsSmoothlyWithTheWheel)
{
    show(colouredDocument(5));
    const int notch = QApplication::wheelScrollLines() * 30;
    wheel({0, -120});
    EXPECT_EQ(scrolled(), 0) << "the way is spread over the next frames";
    EXPECT_TRUE(comesTo(notch));
    wheel({0, 120});
    EXPECT_TRUE(comesTo(0));
}

TEST_F(PDFViewInputTest, AddsUpNotchesThatComeTogether)
{
    show(colouredDocument(9));
    for (int i = 0; i < 8; ++i)
        wheel({0, -120});
    EXPECT_TRUE(comesTo(8 * QApplication::wheelScrollLines() * 30));
    EXPECT_EQ(m_view->currentPageIndex(), 2) << "scrolling changes the current page";
}

TEST_F(PDFViewInputTest, ScrollsAtOnceWithADeviceThatIsSmoothByItself)
{
    show(colouredDocument(5));
    wheel({0, -40});
    EXPECT_EQ(scrolled(), QApplication::wheelScrollLines() * 10);
}

TEST_F(PDFViewInputTest, ScrollsSidewaysWithShift)
{
    show(colouredDocument(1, {1000, 1000}));
    const qint64 before = m_view->pageViewport().x();
    wheel({0, -40}, Qt::ShiftModifier);
    EXPECT_EQ(m_view->pageViewport().x(), before + QApplication::wheelScrollLines() * 10);
}

TEST_F(PDFViewInputTest, ZoomsWithControlAndTheWheelAroundThePointer)
{
    show(colouredDocument(3, {600, 800}));
    m_view->setScaleFactor(2.0);
    m_view->scrollBy({100, 300});
    const QPointF place(130, 210);
    const QPointF before = partOfPage(place);
    wheel({0, 240}, Qt::ControlModifier, place);
    EXPECT_NEAR(m_view->scaleFactor(), 2.0 * 1.1 * 1.1, 1e-9);
    EXPECT_NEAR(partOfPage(place).x(), before.x(), 0.002);
    EXPECT_NEAR(partOfPage(place).y(), before.y(), 0.002);
    wheel({0, -240}, Qt::ControlModifier, place);
    EXPECT_NEAR(m_view->scaleFactor(), 2.0, 1e-9);
}

TEST_F(PDFViewInputTest, ZoomsWithAPinchAroundThePointer)
{
    show(colouredDocument(3, {600, 800}));
    m_view->setScaleFactor(2.0);
    m_view->scrollBy({100, 300});
    const QPointF place(300, 100);
    const QPointF before = partOfPage(place);
    pinch(0.25, place);
    EXPECT_NEAR(m_view->scaleFactor(), 2.5, 1e-9);
    EXPECT_NEAR(partOfPage(place).x(), before.x(), 0.002);
    EXPECT_NEAR(partOfPage(place).y(), before.y(), 0.002);
}

TEST_F(PDFViewInputTest, ScrollsByTheArrowKeys)
{
    show(colouredDocument(5));
    press(Qt::Key_Down);
    EXPECT_TRUE(comesTo(48));
    press(Qt::Key_Up);
    EXPECT_TRUE(comesTo(0));
}

TEST_F(PDFViewInputTest, TurnsPagesByLeftAndRightWhereNothingScrollsSideways)
{
    show(colouredDocument(5));
    press(Qt::Key_Right);
    EXPECT_EQ(m_view->currentPageIndex(), 1);
    press(Qt::Key_Left);
    EXPECT_EQ(m_view->currentPageIndex(), 0);
}

TEST_F(PDFViewInputTest, ScrollsSidewaysByLeftAndRightWhereThePageIsWider)
{
    show(colouredDocument(2, {1000, 400}));
    const qint64 before = m_view->pageViewport().x();
    press(Qt::Key_Right);
    EXPECT_TRUE(QTest::qWaitFor([&] { return m_view->pageViewport().x() == before + 48; }));
    EXPECT_EQ(m_view->currentPageIndex(), 0);
}

TEST_F(PDFViewInputTest, ScrollsAlmostAViewByPageKeysAndSpace)
{
    show(colouredDocument(9));
    const int most = m_view->viewport()->height() * 9 / 10;
    press(Qt::Key_PageDown);
    EXPECT_TRUE(comesTo(most));
    press(Qt::Key_Space);
    EXPECT_TRUE(comesTo(2 * most));
    press(Qt::Key_Space, Qt::ShiftModifier);
    EXPECT_TRUE(comesTo(most));
    press(Qt::Key_PageUp);
    EXPECT_TRUE(comesTo(0));
}

TEST_F(PDFViewInputTest, GoesToBothEndsByHomeAndEnd)
{
    show(colouredDocument(9));
    press(Qt::Key_End);
    EXPECT_EQ(scrolled(), m_view->pageViewport().maximumY());
    EXPECT_EQ(m_view->currentPageIndex(), 8);
    press(Qt::Key_Home);
    EXPECT_EQ(scrolled(), 0);
    EXPECT_EQ(m_view->currentPageIndex(), 0);
}

TEST_F(PDFViewInputTest, BringsNarrowPagesBackIntoViewByHomeAndEnd)
{
    show(documentOfWidths({300, 1200, 300}));
    press(Qt::Key_End);
    ASSERT_TRUE(QTest::qWaitFor([&] { return m_view->isSharp(); }));
    press(Qt::Key_PageUp);
    ASSERT_TRUE(QTest::qWaitFor([&] { return m_view->canScrollSideways(); })) << "the wide page is not there";
    for (int i = 0; i < 20; ++i)
        press(Qt::Key_Right);
    ASSERT_TRUE(QTest::qWaitFor([&] { return m_view->pageRect(2).right() < 0; }))
        << "the view does not move over the wide page";
    press(Qt::Key_End);
    EXPECT_TRUE(isInView(2));
    press(Qt::Key_Home);
    EXPECT_TRUE(isInView(0));
}

TEST_F(PDFViewInputTest, TurnsPagesByLeftAndRightWhereOnlyPagesOutOfSightAreWider)
{
    show(documentOfWidths({300, 300, 300, 1200}));
    press(Qt::Key_End);
    ASSERT_TRUE(QTest::qWaitFor([&] { return m_view->pageViewport().isWiderThanView(); }));
    press(Qt::Key_Home);
    press(Qt::Key_Right);
    EXPECT_EQ(m_view->currentPageIndex(), 1);
    EXPECT_TRUE(isInView(1));
}

TEST_F(PDFViewInputTest, LeavesOtherKeysToTheWindow)
{
    show(colouredDocument(1));
    QKeyEvent event(QEvent::KeyPress, Qt::Key_A, Qt::NoModifier);
    QApplication::sendEvent(m_view.get(), &event);
    EXPECT_FALSE(event.isAccepted());
}

} // namespace
} // namespace pdf
