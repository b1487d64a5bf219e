// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdfview/PageViewport.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <ostream>
#include <vector>

namespace pdf {
namespace {

/// A view of 500 by 400 pixels on pages of 300 by 500 points.
PageViewport viewportOn(int pageCount)
{
    PageViewport viewport(pageCount);
    viewport.setGap(10);
    viewport.setSize({500, 400});
    viewport.setPageSize(0, {300, 500});
    return viewport;
}

TEST(PageViewportTest, BeginsWithTheFirstPageInTheMiddle)
{
    const PageViewport viewport = viewportOn(3);
    EXPECT_EQ(viewport.pageRect(0), QRect(100, 10, 300, 500));
    EXPECT_EQ(viewport.currentPage(), 0);
}

TEST(PageViewportTest, PutsADocumentThatIsShorterThanTheViewInItsMiddle)
{
    PageViewport viewport(1);
    viewport.setGap(10);
    viewport.setSize({500, 400});
    viewport.setPageSize(0, {300, 100});
    EXPECT_EQ(viewport.pageRect(0).top(), 10 + (400 - 120) / 2);
    viewport.scrollTo(0, 50);
    EXPECT_EQ(viewport.y(), 0);
}

TEST(PageViewportTest, ScrollsNoFurtherThanTheDocumentGoes)
{
    PageViewport viewport = viewportOn(2);
    viewport.scrollTo(0, 100000);
    EXPECT_EQ(viewport.y(), 10 + 2 * 510 - 400);
    EXPECT_EQ(viewport.pageRect(1).bottom() + 1, 400 - 10);
    viewport.scrollTo(-5, -5);
    EXPECT_EQ(viewport.y(), 0);
    EXPECT_EQ(viewport.x(), 0);
}

TEST(PageViewportTest, HoldsAPageForTheCurrentOneWhileItIsVisibleAndNobodyScrolls)
{
    PageViewport viewport = viewportOn(5);
    viewport.scrollTo(0, 150);
    ASSERT_EQ(viewport.currentPage(), 0);
    viewport.setCurrentPage(1);
    EXPECT_EQ(viewport.currentPage(), 1);
    EXPECT_EQ(viewport.y(), 150);
    viewport.setSize({500, 410});
    EXPECT_EQ(viewport.currentPage(), 1);
    EXPECT_EQ(viewport.y(), 150);
    viewport.setSize({500, 300});
    EXPECT_EQ(viewport.currentPage(), 0) << "it is not visible any more";
    viewport.setSize({500, 400});
    viewport.scrollTo(0, 151);
    EXPECT_EQ(viewport.currentPage(), 0);
}

TEST(PageViewportTest, TellsTheVisiblePages)
{
    PageViewport viewport = viewportOn(5);
    viewport.scrollTo(0, 400);
    EXPECT_EQ(viewport.visiblePages().first, 0);
    EXPECT_EQ(viewport.visiblePages().last, 1);
    EXPECT_LT(PageViewport(5).visiblePages().last, PageViewport(5).visiblePages().first)
        << "nothing is visible before a size is known";
}

TEST(PageViewportTest, TakesThePageOfWhichMostIsVisibleForTheCurrentOne)
{
    PageViewport viewport = viewportOn(5);
    viewport.scrollTo(0, 250);
    EXPECT_EQ(viewport.currentPage(), 0);
    viewport.scrollTo(0, 350);
    EXPECT_EQ(viewport.currentPage(), 1);
}

TEST(PageViewportTest, TakesTheFirstOfSeveralWholePagesForTheCurrentOne)
{
    PageViewport viewport(9);
    viewport.setGap(10);
    viewport.setSize({500, 400});
    viewport.setPageSize(0, {300, 100});
    viewport.scrollTo(0, 115);
    EXPECT_EQ(viewport.visiblePages().first, 1);
    EXPECT_EQ(viewport.currentPage(), 1);
}

TEST(PageViewportTest, CountsThePageThatWasGoneToAsCurrentUntilTheUserScrolls)
{
    PageViewport viewport(9);
    viewport.setGap(10);
    viewport.setSize({500, 400});
    viewport.setPageSize(0, {300, 100});
    viewport.goToPage(8);
    EXPECT_EQ(viewport.y(), viewport.maximumY()) << "the document ends too early for page 8 at the top";
    EXPECT_EQ(viewport.currentPage(), 8);
    viewport.scrollTo(0, viewport.y() - 1);
    EXPECT_LT(viewport.currentPage(), 8);
}

TEST(PageViewportTest, KeepsThePageThatWasGoneToAtTheTopWhileSizesBecomeKnown)
{
    PageViewport viewport = viewportOn(100);
    viewport.goToPage(50);
    const QRect before = viewport.pageRect(50);
    EXPECT_EQ(before.top(), 10);
    for (int page = 40; page < 60; ++page)
        viewport.setPageSize(page, {300, 100.0 + page});
    EXPECT_EQ(viewport.pageRect(50).top(), 10);
    EXPECT_EQ(viewport.currentPage(), 50);
}

TEST(PageViewportTest, StaysAtTheEndWhileSizesBecomeKnown)
{
    PageViewport viewport = viewportOn(100);
    viewport.goToEnd();
    viewport.setPageSize(99, {300, 2000});
    EXPECT_EQ(viewport.y(), viewport.maximumY());
    viewport.setPageSize(98, {300, 20});
    EXPECT_EQ(viewport.y(), viewport.maximumY());
    EXPECT_EQ(viewport.currentPage(), 99);
}

TEST(PageViewportTest, DoesNotJumpWhenSizesOfOtherPagesBecomeKnown)
{
    PageViewport viewport = viewportOn(1000);
    viewport.scrollTo(0, 200000);
    const int page = viewport.currentPage();
    viewport.setPageSize(page, {300, 500});
    const QRect before = viewport.pageRect(page);
    viewport.setPageSize(page - 1, {800, 40});
    viewport.setPageSize(page + 1, {10, 3000});
    viewport.setPageSize(3, {10, 1000});
    EXPECT_EQ(viewport.pageRect(page).top(), before.top());
    EXPECT_EQ(viewport.pageRect(page).center().x(), before.center().x());
}

TEST(PageViewportTest, KeepsTheVisibleBeginningOfThePageWhoseOwnSizeBecomesKnown)
{
    PageViewport viewport = viewportOn(1000);
    const qint64 pageTop = viewport.layout().top(500);
    viewport.scrollTo(0, pageTop - 30);
    ASSERT_EQ(viewport.currentPage(), 500);
    viewport.setPageSize(500, {300, 900});
    EXPECT_EQ(viewport.pageRect(500).top(), 30);
}

struct ZoomCase
{
    QPoint point;
    double from;
    double to;
};

void PrintTo(const ZoomCase& zoom, std::ostream* stream)
{
    *stream << zoom.point.x() << "," << zoom.point.y() << ": " << zoom.from << " to " << zoom.to;
}

class PageViewportZoomTest : public testing::TestWithParam<ZoomCase>
{
};

TEST_P(PageViewportZoomTest, KeepsThePointOfThePageUnderThePointer)
{
    const ZoomCase zoom = GetParam();
    PageViewport viewport = viewportOn(50);
    viewport.setScale(zoom.from);
    viewport.scrollTo(viewport.maximumX() / 3, viewport.layout().top(20) + 5);
    const int page = viewport.layout().pageAt(viewport.y() + zoom.point.y());
    const auto onPage = [&] {
        return QPointF(zoom.point - viewport.pageRect(page).topLeft()) / viewport.scale();
    };
    const QPointF before = onPage();
    ASSERT_TRUE(QRectF(0, 0, 300, 500).contains(before)) << "the case does not point at a page";
    viewport.setScale(zoom.to, zoom.point);
    const QPointF after = onPage();
    const double pixel = 1.5 / std::min(zoom.from, zoom.to);
    EXPECT_NEAR(before.y(), after.y(), pixel);
    // Sideways a page that is narrower than the view has its place in the middle.
    if (viewport.maximumX() > 0 && viewport.x() > 0 && viewport.x() < viewport.maximumX()) {
        EXPECT_NEAR(before.x(), after.x(), pixel);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Zooms, PageViewportZoomTest,
    testing::Values(
        ZoomCase{{250, 200}, 1.0, 1.1}, ZoomCase{{250, 200}, 1.0, 5.0}, ZoomCase{{130, 390}, 1.0, 3.3},
        ZoomCase{{250, 100}, 2.0, 0.5}, ZoomCase{{390, 20}, 2.0, 2.25}, ZoomCase{{10, 10}, 4.0, 4.4},
        ZoomCase{{490, 399}, 4.0, 3.9}));

TEST(PageViewportTest, KeepsThePageThatWasGoneToWhenTheScaleChangesWithoutAPoint)
{
    PageViewport viewport = viewportOn(50);
    viewport.goToPage(7);
    viewport.setScale(2.5);
    EXPECT_EQ(viewport.pageRect(7).top(), 10);
    EXPECT_EQ(viewport.currentPage(), 7);
}

TEST(PageViewportTest, KeepsThePlaceWhenTheViewIsResized)
{
    PageViewport viewport = viewportOn(50);
    viewport.scrollTo(0, viewport.layout().top(20) + 100);
    viewport.setSize({900, 700});
    EXPECT_EQ(viewport.pageRect(20).top(), -100);
    EXPECT_EQ(viewport.pageRect(20).center().x(), 449);
}

TEST(PageViewportTest, ShowsTheMiddleOfAPageThatIsWiderThanTheView)
{
    PageViewport viewport(1);
    viewport.setGap(10);
    viewport.setSize({500, 400});
    viewport.setPageSize(0, {2000, 500});
    EXPECT_EQ(viewport.x(), viewport.maximumX() / 2);
    EXPECT_EQ(viewport.maximumX(), 2020 - 500);
}

/// A view of 500 by 400 pixels on pages of 500 points height and these widths.
PageViewport viewportOnWidths(const std::vector<double>& widths)
{
    PageViewport viewport(static_cast<int>(widths.size()));
    viewport.setGap(10);
    viewport.setSize({500, 400});
    for (std::size_t page = 0; page < widths.size(); ++page)
        viewport.setPageSize(static_cast<int>(page), {widths[page], 500});
    return viewport;
}

TEST(PageViewportTest, ShowsThePageThatWasGoneToWhereverTheViewWasSideways)
{
    PageViewport viewport = viewportOnWidths({300, 2000, 300});
    for (const int side : {0, 10000}) {
        viewport.goToPage(1);
        viewport.scrollTo(side, viewport.y());
        viewport.goToEnd();
        EXPECT_EQ(viewport.pageRect(2).left(), 100);
        viewport.goToPage(1);
        viewport.scrollTo(side, viewport.y());
        viewport.goToPage(0);
        EXPECT_EQ(viewport.pageRect(0).left(), 100);
    }
}

TEST(PageViewportTest, NeverScrollsToWhereOnlyThingsBesideThePagesAre)
{
    PageViewport viewport = viewportOnWidths({300, 2000, 300, 300});
    viewport.scrollTo(0, viewport.layout().top(1));
    EXPECT_EQ(viewport.pageRect(1).left(), 10);
    viewport.scrollTo(viewport.x(), viewport.layout().top(2));
    EXPECT_EQ(viewport.pageRect(2).left(), 100);
    viewport.scrollTo(0, viewport.y());
    EXPECT_EQ(viewport.pageRect(2).left(), 100) << "the visible pages fit into the view";
}

TEST(PageViewportTest, KeepsItsPlaceSidewaysFromPageToPageOfTheSameWidth)
{
    PageViewport viewport = viewportOnWidths({2000, 2000, 2000});
    viewport.scrollTo(120, 0);
    viewport.goToPage(1);
    EXPECT_EQ(viewport.x(), 120);
    viewport.goToEnd();
    EXPECT_EQ(viewport.x(), 120);
}

TEST(PageViewportTest, LetsTheUserLookAsideOfThePageThatWasGoneTo)
{
    PageViewport viewport = viewportOnWidths({300, 2000});
    viewport.setPageSize(0, {300, 100});
    viewport.goToPage(0);
    viewport.scrollTo(10000, viewport.y());
    const qint64 aside = viewport.x();
    EXPECT_EQ(viewport.pageRect(1).right() + 1, 500 - 10);
    viewport.setPageSize(1, {2000, 510});
    EXPECT_EQ(viewport.x(), aside);
    EXPECT_EQ(viewport.currentPage(), 0);
}

TEST(PageViewportTest, StandsStillWithoutPages)
{
    PageViewport viewport(0);
    viewport.setSize({500, 400});
    viewport.goToPage(0);
    viewport.goToEnd();
    viewport.scrollTo(10, 10);
    EXPECT_EQ(viewport.currentPage(), -1);
    EXPECT_EQ(viewport.y(), 0);
}

} // namespace
} // namespace pdf
