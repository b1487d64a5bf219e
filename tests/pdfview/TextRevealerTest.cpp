// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdfview/TextRevealer.h"

#include "pdf/PDFDocument.h"
#include "pdf/PDFPage.h"
#include "pdf/TextLayer.h"
#include "pdfview/ViewSupport.h"

#include <gtest/gtest.h>

#include <QTest>

namespace pdf {
namespace {

// A line at the head of the page, one in its middle and one at its foot; 12, 14 and 12 characters with their
// line feeds.
const QByteArray threeLines =
    showText(72, 740, "At the head") + showText(400, 400, "In the middle") + showText(72, 40, "At the foot");
constexpr TextRange head{0, 11};
constexpr TextRange middle{12, 13};
constexpr TextRange foot{26, 11};

class TextRevealerTest : public PDFViewFixture
{
protected:
    void showPages(int count, QSize size = {700, 500})
    {
        PDFWriter writer;
        for (int page = 0; page < count; ++page)
            writer.addPage(threeLines);
        show(writer.bytes(), size);
    }

    void select(int page, TextRange range, bool animate = false)
    {
        m_view->setCurrentSelection(
            m_view->document()->selection({page, range.location}, {page, range.end()}), animate);
        ASSERT_TRUE(m_view->currentSelection());
    }

    /// Where the selection is in the view; nowhere while that is not known.
    QRectF place() const
    {
        const auto& part = m_view->currentSelection()->parts().front();
        const auto page = m_view->document()->page(part.page);
        const auto toView = m_view->pageToView(part.page);
        return toView ? toView->mapRect(page->text()->lineBounds(part.range.location, part.range.length)[0])
                      : QRectF();
    }
    bool isInView() const { return QRectF(m_view->viewport()->rect()).contains(place()); }
    bool comesIntoView()
    {
        return QTest::qWaitFor([&] { return !place().isEmpty() && isInView(); });
    }
    /// How far it is from the nearest edge of the view, upwards or downwards.
    double roomAround() const
    {
        return std::min(place().top(), m_view->viewport()->height() - place().bottom());
    }
    /// Until nothing moves any more.
    bool comesToRest()
    {
        qint64 before = -1;
        return QTest::qWaitFor([&] {
            const qint64 now = m_view->pageViewport().y();
            const bool isStill = now == before;
            before = now;
            QTest::qWait(isStill ? 0 : 60);
            return isStill;
        });
    }
};

TEST_F(TextRevealerTest, LeavesWhatIsInViewWhereItIs)
{
    showPages(3);
    m_view->scrollBy({0, 7});
    const qint64 y = m_view->pageViewport().y();
    select(0, middle);
    ASSERT_TRUE(comesIntoView());
    m_view->scrollSelectionToVisible();
    ASSERT_TRUE(comesToRest());
    EXPECT_EQ(m_view->pageViewport().y(), y);
    m_view->clearSelection();
    m_view->scrollSelectionToVisible();
    ASSERT_TRUE(comesToRest());
    EXPECT_EQ(m_view->pageViewport().y(), y) << "there is nothing to be shown";
}

TEST_F(TextRevealerTest, ScrollsSmoothlyToWhatIsNear)
{
    showPages(3);
    ASSERT_TRUE(QTest::qWaitFor([&] { return m_view->pageToView(0).has_value(); }));
    select(0, foot);
    m_view->scrollSelectionToVisible();
    EXPECT_EQ(m_view->pageViewport().y(), 0) << "the way is spread over the next frames";
    ASSERT_TRUE(comesIntoView());
    ASSERT_TRUE(comesToRest());
    EXPECT_TRUE(isInView());
    EXPECT_GT(roomAround(), 80);

    select(0, head);
    m_view->scrollSelectionToVisible();
    ASSERT_TRUE(comesIntoView());
    ASSERT_TRUE(comesToRest());
    EXPECT_EQ(m_view->pageViewport().y(), 0) << "the document has no more room above";
}

TEST_F(TextRevealerTest, GoesAtOnceToWhatIsFar)
{
    showPages(40);
    select(30, foot);
    EXPECT_FALSE(m_view->pageToView(30)) << "nobody has read the page yet";
    m_view->scrollSelectionToVisible();
    EXPECT_TRUE(isVisible(30));
    EXPECT_TRUE(comesIntoView());
    ASSERT_TRUE(comesToRest());
    EXPECT_GT(roomAround(), 80);
    EXPECT_EQ(m_view->currentPageIndex(), 30);
}

TEST_F(TextRevealerTest, FindsItsWayAmongPagesOfAllSizes)
{
    PDFWriter writer;
    for (int page = 0; page < 40; ++page) {
        const QByteArray height = QByteArray::number(800 + 200 * (page % 7));
        writer.addPage(threeLines, "/MediaBox[0 0 612 " + height + "]");
    }
    show(writer.bytes(), {700, 500});
    for (const int page : {33, 35, 12, 11, 39}) {
        select(page, page % 2 == 0 ? head : foot);
        m_view->scrollSelectionToVisible();
        EXPECT_TRUE(comesIntoView()) << page;
        ASSERT_TRUE(comesToRest());
        EXPECT_TRUE(isInView()) << page;
        EXPECT_EQ(m_view->currentPageIndex(), page);
    }
}

TEST_F(TextRevealerTest, ScrollsSidewaysInAPageThatIsWiderThanTheView)
{
    showPages(2);
    m_view->setScaleFactor(3.0);
    m_view->goToPage(0);
    m_view->scrollBy({-5000, 0});
    select(0, middle);
    m_view->scrollSelectionToVisible();
    ASSERT_TRUE(comesIntoView());
    ASSERT_TRUE(comesToRest());
    EXPECT_TRUE(isInView());
    const qint64 x = m_view->pageViewport().x();
    EXPECT_GT(x, 0);
    select(0, {12, 2});
    m_view->scrollSelectionToVisible();
    ASSERT_TRUE(comesToRest());
    EXPECT_EQ(m_view->pageViewport().x(), x);
}

TEST_F(TextRevealerTest, ShowsTheBeginningOfWhatIsLargerThanTheView)
{
    showPages(3);
    m_view->goToPage(2);
    m_view->selectAll();
    m_view->scrollSelectionToVisible();
    ASSERT_TRUE(QTest::qWaitFor([&] { return m_view->currentSelection().has_value(); }));
    EXPECT_TRUE(comesIntoView()) << "the first line";
}

TEST_F(TextRevealerTest, ShowsTextOfPagesThatAreTurned)
{
    for (const char* rotation : {"/Rotate 90", "/Rotate 180", "/Rotate 270"}) {
        PDFWriter writer;
        for (int page = 0; page < 5; ++page)
            writer.addPage(threeLines, rotation);
        show(writer.bytes(), {700, 400});
        for (const TextRange range : {head, foot}) {
            select(3, range);
            m_view->scrollSelectionToVisible();
            EXPECT_TRUE(comesIntoView()) << rotation;
            ASSERT_TRUE(comesToRest());
            EXPECT_TRUE(isInView()) << rotation;
        }
    }
}

TEST_F(TextRevealerTest, ShowsTheTextWhenItsPageIsGoneToAfterwards)
{
    showPages(10);
    for (const int page : {0, 7, 8}) {
        for (const TextRange range : {foot, middle, head}) {
            select(page, range, true);
            m_view->scrollSelectionToVisible();
            m_view->goToPage(page);
            EXPECT_TRUE(comesIntoView());
            ASSERT_TRUE(comesToRest());
            EXPECT_TRUE(isInView()) << "character " << range.location << " of page " << page;
            EXPECT_EQ(m_view->currentPageIndex(), page);
        }
    }
    m_view->goToPage(8);
    EXPECT_EQ(m_view->pageRect(8).top(), 12) << "later on it means the top of the page";
}

TEST_F(TextRevealerTest, GivesWayToTheUser)
{
    showPages(40);
    select(0, foot);
    m_view->scrollSelectionToVisible();
    m_view->scrollBy({0, 5});
    ASSERT_TRUE(comesToRest());
    EXPECT_EQ(m_view->pageViewport().y(), 5);

    select(30, foot);
    m_view->scrollSelectionToVisible();
    m_view->goToPage(3);
    select(31, foot);
    m_view->scrollSelectionToVisible();
    QTest::keyClick(m_view.get(), Qt::Key_Home);
    ASSERT_TRUE(QTest::qWaitFor([&] { return m_view->isSharp(); }));
    ASSERT_TRUE(comesToRest());
    EXPECT_EQ(m_view->currentPageIndex(), 0);
}

TEST_F(TextRevealerTest, CopesWithADocumentThatIsTakenAway)
{
    showPages(40);
    select(30, foot);
    m_view->scrollSelectionToVisible();
    m_view->setDocument(documentOf(colouredDocument(2)));
    m_view->scrollSelectionToVisible();
    EXPECT_TRUE(becomes(m_view->pageRect(0).center(), colorOfPage(0)));
    EXPECT_EQ(m_view->currentPageIndex(), 0);
}

} // namespace
} // namespace pdf
