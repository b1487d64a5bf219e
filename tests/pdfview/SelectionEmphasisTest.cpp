// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdfview/SelectionEmphasis.h"

#include "pdf/PDFDocument.h"
#include "pdfview/ViewSupport.h"

#include <gtest/gtest.h>

#include <QProxyStyle>
#include <QTest>

namespace pdf {
namespace {

class SelectionEmphasisTest : public PDFViewFixture
{
protected:
    void showPages(int count)
    {
        PDFWriter writer;
        for (int page = 0; page < count; ++page)
            writer.addPage(showText(72, 700, "Hello world"));
        show(writer.bytes(), {700, 900});
        ASSERT_TRUE(QTest::qWaitFor([&] { return m_view->isSharp(); }));
    }

    void select(int page)
    {
        m_view->setCurrentSelection(m_view->document()->selection({page, 0}, {page, 11}), true);
    }

    /// Beside the text, where the selection colours nothing.
    QColor colorBeside(int page)
    {
        const auto toView = m_view->pageToView(page);
        return toView ? colorAt(toView->map(QPointF(110, 718))) : QColor(Qt::white);
    }
    bool comesAndGoes(int page)
    {
        return QTest::qWaitFor([&] { return colorBeside(page) != QColor(Qt::white); }) &&
               QTest::qWaitFor([&] { return colorBeside(page) == QColor(Qt::white); });
    }
};

/// The system wants no animations.
class StillStyle : public QProxyStyle
{
public:
    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget, QStyleHintReturn* data)
        const override
    {
        return hint == SH_Widget_Animation_Duration ? 0 : QProxyStyle::styleHint(hint, option, widget, data);
    }
};

TEST_F(SelectionEmphasisTest, ReachesBeyondTheTextForAMoment)
{
    showPages(1);
    select(0);
    EXPECT_TRUE(comesAndGoes(0));
    select(0);
    EXPECT_TRUE(comesAndGoes(0)) << "it is selected once more";
}

TEST_F(SelectionEmphasisTest, LeavesNothingBehind)
{
    showPages(1);
    m_view->setCurrentSelection(m_view->document()->selection({0, 0}, {0, 11}));
    ASSERT_TRUE(QTest::qWaitFor(
        [&] { return colorAt(m_view->pageToView(0)->map(QPointF(101, 698.5))) != QColor(Qt::white); }));
    const QImage before = m_view->viewport()->grab().toImage();
    select(0);
    ASSERT_TRUE(comesAndGoes(0));
    EXPECT_TRUE(QTest::qWaitFor([&] { return m_view->viewport()->grab().toImage() == before; }));
}

TEST_F(SelectionEmphasisTest, WaitsUntilTheTextIsInView)
{
    showPages(30);
    select(20);
    EXPECT_EQ(m_view->currentPageIndex(), 20) << "it moves to what is selected";
    EXPECT_TRUE(comesAndGoes(20));
}

TEST_F(SelectionEmphasisTest, EndsWithTheSelection)
{
    showPages(1);
    select(0);
    ASSERT_TRUE(QTest::qWaitFor([&] { return colorBeside(0) != QColor(Qt::white); }));
    m_view->clearSelection();
    EXPECT_EQ(colorBeside(0), QColor(Qt::white));
}

TEST_F(SelectionEmphasisTest, IsLeftOutWhereTheSystemWantsNoAnimations)
{
    showPages(30);
    StillStyle style;
    m_view->setStyle(&style);
    select(1);
    EXPECT_FALSE(comesAndGoes(1));
    EXPECT_EQ(m_view->currentPageIndex(), 1);
    m_view.reset();
}

} // namespace
} // namespace pdf
