// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdfview/PDFView.h"

#include "pdf/PDFAnnotation.h"
#include "pdf/PDFDisplayList.h"
#include "pdf/PDFDocument.h"
#include "pdf/PDFPage.h"
#include "pdfview/RenderThreads.h"
#include "pdfview/ViewSupport.h"

#include <gtest/gtest.h>

#include <QDeadlineTimer>
#include <QFile>
#include <QPainter>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>
#include <QVBoxLayout>

#include <cmath>

namespace pdf {
namespace {

class PDFViewTest : public PDFViewFixture
{
};

TEST_F(PDFViewTest, ShowsTheFirstPageInTheMiddle)
{
    show(colouredDocument(3));
    EXPECT_EQ(m_view->currentPageIndex(), 0);
    EXPECT_TRUE(becomes(m_view->pageRect(0).center(), colorOfPage(0)));
    EXPECT_NEAR(m_view->pageRect(0).center().x(), m_view->viewport()->width() / 2.0, 1);
    EXPECT_EQ(m_view->pageRect(0).size(), QSizeF(300, 400)) << "at 100 % a page point is a view point";
}

TEST_F(PDFViewTest, PaintsTheSurroundingsInThePalettesWindowColour)
{
    show(colouredDocument(1));
    QPalette palette;
    palette.setColor(QPalette::Window, QColor(1, 2, 3));
    m_view->setPalette(palette);
    EXPECT_TRUE(becomes({3, 3}, QColor(1, 2, 3)));
}

TEST_F(PDFViewTest, ShowsThatTheKeyboardHasComeByTheTabKey)
{
    show(colouredDocument(1));
    const QColor ring = m_view->palette().color(QPalette::Highlight);
    const auto edge = [&] { return colorAt(QPointF(1, m_view->viewport()->height() / 2.0)); };
    m_view->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(m_view.get()));
    m_view->setFocus(Qt::MouseFocusReason);
    EXPECT_NE(edge(), ring) << "whoever clicks knows where";
    m_view->clearFocus();
    m_view->setFocus(Qt::TabFocusReason);
    EXPECT_EQ(edge(), ring);
    EXPECT_EQ(colorAt(QPointF(m_view->viewport()->width() / 2.0, m_view->viewport()->height() - 1.0)), ring);
    m_view->clearFocus();
    EXPECT_NE(edge(), ring);
    m_view->setFocus(Qt::ActiveWindowFocusReason);
    EXPECT_EQ(edge(), ring) << "the keyboard returns after an absence";
    QTest::mouseClick(m_view->viewport(), Qt::LeftButton, {}, QPoint(200, 200));
    EXPECT_NE(edge(), ring);
    m_view->clearFocus();
    m_view->setFocus(Qt::BacktabFocusReason);
    EXPECT_EQ(edge(), ring);
}

TEST_F(PDFViewTest, TellsOnceThatTheFirstPagesAreShown)
{
    m_view = std::make_unique<PDFView>();
    QSignalSpy shown(m_view.get(), &PDFView::firstPagesShown);
    m_view->setDocument(documentOf(colouredDocument(3)));
    m_view->show();
    ASSERT_TRUE(shown.wait());
    m_view->goToPage(2);
    ASSERT_TRUE(becomes(m_view->pageRect(2).center(), colorOfPage(2)));
    EXPECT_EQ(shown.count(), 1);
}

TEST_F(PDFViewTest, TellsOfADocumentWithoutPagesThatAllIsShown)
{
    show(PDFWriter().bytes());
    EXPECT_EQ(m_view->currentPageIndex(), -1);
    m_view->goToNextPage();
    m_view->goToEnd();
    m_view->setAutoScales(true);
    m_view->zoom(2.0, {10, 10});
    EXPECT_EQ(m_view->currentPageIndex(), -1);
}

TEST_F(PDFViewTest, GoesFromPageToPage)
{
    show(colouredDocument(3));
    QSignalSpy changed(m_view.get(), &PDFView::pageChanged);
    m_view->goToNextPage();
    EXPECT_EQ(m_view->currentPageIndex(), 1);
    EXPECT_EQ(m_view->pageRect(1).top(), 12);
    EXPECT_TRUE(becomes(m_view->pageRect(1).center(), colorOfPage(1)));
    m_view->goToNextPage();
    m_view->goToNextPage();
    EXPECT_EQ(m_view->currentPageIndex(), 2) << "there is no page after the last";
    m_view->goToPreviousPage();
    m_view->goToPreviousPage();
    m_view->goToPreviousPage();
    EXPECT_EQ(m_view->currentPageIndex(), 0);
    EXPECT_EQ(changed.count(), 4);
}

TEST_F(PDFViewTest, FollowsItsScrollBar)
{
    show(colouredDocument(5));
    QScrollBar* bar = m_view->verticalScrollBar();
    bar->setValue(bar->maximum());
    EXPECT_EQ(m_view->currentPageIndex(), 4);
    EXPECT_TRUE(becomes(m_view->pageRect(4).center(), colorOfPage(4)));
    m_view->goToPage(0);
    EXPECT_EQ(bar->value(), 0);
}

TEST_F(PDFViewTest, ShowsRotatedPagesAsTheyAreTurned)
{
    PDFWriter writer;
    addColouredPage(writer, colorOfPage(0), {300, 400}, "/Rotate 90");
    addColouredPage(writer, colorOfPage(1), {200, 100}, "/Rotate 180");
    show(writer.bytes(), {500, 700});
    EXPECT_EQ(m_view->pageRect(0).size(), QSizeF(400, 300));
    EXPECT_TRUE(becomes(m_view->pageRect(1).center(), colorOfPage(1)));
    EXPECT_EQ(m_view->pageRect(1).size(), QSizeF(200, 100));
}

TEST_F(PDFViewTest, LaysAPageOutAnewThatWasTurned)
{
    PDFWriter writer;
    writer.addPage("1 0 0 rg 0 0 300 200 re f 0 0 1 rg 0 200 300 200 re f", "/MediaBox[0 0 300 400]");
    addColouredPage(writer, colorOfPage(1));
    show(writer.bytes(), {500, 700});
    ASSERT_TRUE(becomes(m_view->pageRect(0).center() - QPointF(0, 100), Qt::blue));
    const double before = m_view->pageRect(1).top();

    ASSERT_TRUE(m_view->document()->page(0)->setRotation(90));
    m_view->refreshPage(0);
    EXPECT_EQ(m_view->pageRect(0).size(), QSizeF(300, 400)) << "it stays as it was until it is read";
    ASSERT_TRUE(QTest::qWaitFor([&] { return m_view->pageRect(0).size() == QSizeF(400, 300); }));
    EXPECT_TRUE(becomes(m_view->pageRect(0).center() + QPointF(100, 0), Qt::blue));
    EXPECT_TRUE(becomes(m_view->pageRect(0).center() - QPointF(100, 0), Qt::red));
    EXPECT_EQ(m_view->pageRect(1).top(), before - 100) << "what follows moves up";
    EXPECT_EQ(m_view->pageToView(0)->map(QPointF(0, 0)).toPoint(), m_view->pageRect(0).topLeft().toPoint())
        << "the page's lower left corner is now the upper left one";
}

TEST_F(PDFViewTest, KeepsNoPictureOfAPageThatWasTurnedOutOfSight)
{
    show(colouredDocument(9), {500, 500});
    m_view->goToPage(8);
    ASSERT_TRUE(becomes(m_view->pageRect(8).center(), colorOfPage(8)));
    ASSERT_TRUE(m_view->document()->page(0)->setRotation(90));
    m_view->refreshPage(0);
    m_view->goToPage(0);
    EXPECT_TRUE(QTest::qWaitFor([&] { return m_view->pageRect(0).size() == QSizeF(400, 300); }));
    EXPECT_TRUE(becomes(m_view->pageRect(0).center(), colorOfPage(0)));
}

TEST_F(PDFViewTest, FitsTheCurrentPageIntoItsWidthUntilItIsZoomed)
{
    show(colouredDocument(2), {900, 700});
    m_view->setAutoScales(true);
    const auto room = [&] {
        return m_view->maximumViewportSize().width() - m_view->verticalScrollBar()->sizeHint().width() - 24;
    };
    EXPECT_NEAR(m_view->scaleFactor(), room() / 300.0, 1e-9);
    m_view->resize(500, 700);
    EXPECT_NEAR(m_view->scaleFactor(), room() / 300.0, 1e-9);
    m_view->setScaleFactor(1.25);
    m_view->resize(800, 700);
    EXPECT_EQ(m_view->scaleFactor(), 1.25);
    EXPECT_FALSE(m_view->autoScales());
}

TEST_F(PDFViewTest, FitsAPageThatWasPushedOutOfTheWindow)
{
    PDFWriter writer;
    for (const int width : {300, 1200, 300})
        addColouredPage(writer, colorOfPage(0), {width, 200});
    show(writer.bytes());
    ASSERT_TRUE(QTest::qWaitFor([&] { return m_view->canScrollSideways(); }));
    const auto isInside = [&](int page) {
        const QRectF rect = m_view->pageRect(page);
        return rect.left() >= 0 && rect.right() <= m_view->viewport()->width();
    };
    for (int i = 0; i < 2; ++i) {
        m_view->scrollBy({5000, 0});
        ASSERT_FALSE(isInside(0));
        ASSERT_EQ(m_view->currentPageIndex(), 0);
        m_view->setAutoScales(true);
        EXPECT_TRUE(isInside(0)) << "at the scale of " << m_view->scaleFactor();
    }
}

TEST_F(PDFViewTest, FitsTheCurrentPageWhereOtherPagesFillTheView)
{
    show(colouredDocument(9, {300, 60}));
    ASSERT_TRUE(QTest::qWaitFor([&] { return m_view->isSharp(); }));
    // From now on no page counts as gone to.
    m_view->scrollBy({0, 5});
    ASSERT_EQ(m_view->currentPageIndex(), 0);
    m_view->resize(1400, 500);
    m_view->setAutoScales(true);
    EXPECT_GE(m_view->pageRect(0).top(), 0) << "the page that is fitted is above the view";
    EXPECT_EQ(m_view->currentPageIndex(), 0);
}

TEST_F(PDFViewTest, TellsWhenTheScaleChangesAndOnlyThen)
{
    show(colouredDocument(1));
    const QSignalSpy changed(m_view.get(), &PDFView::scaleChanged);
    m_view->setScaleFactor(1.0);
    EXPECT_EQ(changed.count(), 0);
    m_view->setScaleFactor(2.0);
    EXPECT_EQ(changed.count(), 1);
}

TEST_F(PDFViewTest, ZoomsByHandBetween25And500Percent)
{
    show(colouredDocument(1));
    m_view->zoom(100.0, {200, 200});
    EXPECT_EQ(m_view->scaleFactor(), 5.0);
    m_view->zoom(0.0001, {200, 200});
    EXPECT_EQ(m_view->scaleFactor(), 0.25);
}

TEST_F(PDFViewTest, PaintsSharpPagesAgainAfterZooming)
{
    show(colouredDocument(2));
    m_view->setScaleFactor(3.0);
    EXPECT_TRUE(becomes({200, 250}, colorOfPage(0)));
    m_view->setScaleFactor(0.25);
    EXPECT_TRUE(becomes(m_view->pageRect(1).center(), colorOfPage(1)));
}

TEST_F(PDFViewTest, OpensADocumentOf20000PagesAtItsLastPage)
{
    PDFWriter writer;
    for (int page = 0; page < 20000; ++page)
        writer.addPage("", "/MediaBox[0 0 300 400]");
    show(writer.bytes());
    m_view->goToEnd();
    EXPECT_EQ(m_view->currentPageIndex(), 19999);
    EXPECT_TRUE(becomes(m_view->pageRect(19999).center(), Qt::white));
}

TEST_F(PDFViewTest, MarksAPageThatCannotBeShownAndShowsTheRest)
{
    PDFWriter writer;
    addColouredPage(writer, colorOfPage(0));
    // The page is no dictionary at all.
    const int broken = writer.addPage("", "/MediaBox[0 0 300 400]");
    addColouredPage(writer, colorOfPage(2));
    writer.replace(broken, "(nothing)");
    show(writer.bytes());
    m_view->goToPage(2);
    EXPECT_TRUE(becomes(m_view->pageRect(2).center(), colorOfPage(2)));
    m_view->goToPage(1);
    // It takes the room of a sheet of letter paper, which is wider than the view.
    EXPECT_TRUE(becomes({10, m_view->pageRect(1).top() + 10}, Qt::white));
}

/// Pages of one colour that are too heavy for several of them to be read at once.
QByteArray heavyDocument(int pageCount)
{
    PDFWriter writer;
    for (int page = 0; page < pageCount; ++page) {
        const QColor color = colorOfPage(page);
        writer.addPage(
            QByteArray::number(color.redF()) + ' ' + QByteArray::number(color.greenF()) + ' ' +
                QByteArray::number(color.blueF()) + " rg 0 0 300 400 re f" + QByteArray(8000, ' '),
            "/MediaBox[0 0 300 400]");
    }
    return writer.bytes();
}

TEST_F(PDFViewTest, SaysWhyPagesCannotBeShownAfterTheFileWasCutShort)
{
    show(heavyDocument(60));
    ASSERT_TRUE(becomes(m_view->pageRect(0).center(), colorOfPage(0)));
    ASSERT_TRUE(QFile::resize(m_view->document()->documentURL().toLocalFile(), 10000));
    const QSignalSpy failed(m_view.get(), &PDFView::pageFailed);
    m_view->goToEnd();
    ASSERT_TRUE(QTest::qWaitFor([&] { return !m_view->pageFailure(59).isEmpty(); }));
    EXPECT_FALSE(failed.isEmpty());
    EXPECT_EQ(
        m_view->pageFailure(59),
        QStringLiteral(
            "This page cannot be shown because another program has changed the file. Open the file "
            "again to see what it holds now."));
    const auto wordsOnPaper = [&] {
        const QImage image = m_view->viewport()->grab(m_view->pageRect(59).toRect()).toImage();
        int pixels = 0;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x)
                pixels += image.pixelColor(x, y).lightness() < 160 ? 1 : 0;
        }
        return pixels;
    };
    EXPECT_TRUE(QTest::qWaitFor([&] { return wordsOnPaper() > 100; })) << "the paper says nothing";

    m_view->goToPage(0);
    EXPECT_TRUE(becomes(m_view->pageRect(0).center(), colorOfPage(0))) << "what was drawn stays";
    EXPECT_EQ(m_view->pageFailure(0), QString());
}

TEST_F(PDFViewTest, KeepsWhatWasDrawnOfAPageThatFailsLater)
{
    // The view shows the upper half of the page, and nothing of the rest is drawn in advance.
    show(heavyDocument(60), {400, 500});
    m_view->goToPage(1);
    ASSERT_TRUE(becomes(m_view->pageRect(1).center(), colorOfPage(1)));
    // So many pages on that nothing but the pictures of the page is kept.
    for (int page = 2; page < 20; ++page) {
        m_view->goToPage(page);
        ASSERT_TRUE(QTest::qWaitFor([&] { return m_view->isSharp(); }));
    }
    ASSERT_TRUE(QFile::resize(m_view->document()->documentURL().toLocalFile(), 10000));
    m_view->goToPage(1);
    EXPECT_TRUE(becomes(m_view->pageRect(1).center(), colorOfPage(1)));
    // Drawn at another scale it would have to be read again.
    m_view->setScaleFactor(1.5);
    EXPECT_TRUE(QTest::qWaitFor([&] { return !m_view->pageFailure(1).isEmpty(); }));
    m_view->setScaleFactor(1.0);
    m_view->goToPage(1);
    EXPECT_TRUE(becomes(m_view->pageRect(1).center(), colorOfPage(1)));
}

TEST_F(PDFViewTest, ShowsPagesOfAFileThatWasReplaced)
{
    show(heavyDocument(60));
    const QString path = m_view->document()->documentURL().toLocalFile();
    ASSERT_TRUE(QFile::remove(path));
    ASSERT_TRUE(QFile::rename(m_folder.write(QStringLiteral("new.pdf"), "no PDF"), path));
    m_view->goToPage(59);
    EXPECT_TRUE(becomes(m_view->pageRect(59).center(), colorOfPage(59)));
}

TEST_F(PDFViewTest, StartsAnotherDocumentAtItsFirstPageAndKeepsTheScale)
{
    show(colouredDocument(5));
    m_view->setScaleFactor(0.5);
    m_view->goToPage(4);
    PDFWriter other;
    addColouredPage(other, QColor(255, 0, 255), {200, 600});
    const QSignalSpy changed(m_view.get(), &PDFView::documentChanged);
    m_view->setDocument(documentOf(other.bytes()));
    EXPECT_EQ(changed.count(), 1);
    EXPECT_EQ(m_view->currentPageIndex(), 0);
    ASSERT_TRUE(QTest::qWaitFor([&] { return m_view->pageRect(0).height() == 300; }));
    EXPECT_TRUE(becomes(m_view->pageRect(0).center(), QColor(255, 0, 255)));
    EXPECT_EQ(m_view->scaleFactor(), 0.5);
}

TEST_F(PDFViewTest, ShowsNothingAfterItsDocumentWasTaken)
{
    show(colouredDocument(1));
    m_view->setDocument({});
    EXPECT_EQ(m_view->currentPageIndex(), -1);
    EXPECT_TRUE(becomes({200, 250}, m_view->palette().color(QPalette::Window)));
}

TEST_F(PDFViewTest, GoesWhileAPageIsBeingDrawn)
{
    PDFWriter writer;
    addEndlessPage(writer);
    m_view = std::make_unique<PDFView>();
    m_view->setDocument(documentOf(writer.bytes()));
    m_view->show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(m_view.get()));
    // The page is on a render thread by the time that its size is known.
    ASSERT_TRUE(QTest::qWaitFor([&] { return m_view->pageViewport().layout().hasSizes(); }));
    m_view.reset();
    EXPECT_TRUE(RenderThreads::shared().waitUntilIdle(std::chrono::seconds(5)))
        << "drawing has not been abandoned";
}

TEST_F(PDFViewTest, ShowsAnAnnotationHoweverFastRefreshesFollowOneAnother)
{
    PDFWriter writer;
    addPageWithSlowAnnotation(writer);
    show(writer.bytes());
    const auto annotation = m_view->document()->page(0)->annotations().at(0);
    const QPoint middle = m_view->pageRect(0).center().toPoint();
    const QDeadlineTimer deadline(20'000);
    bool isShown = false;
    for (int i = 0; !isShown && !deadline.hasExpired(); ++i) {
        annotation->setBounds({120.0 + i % 50, 120, 200, 200});
        m_view->refreshAnnotations(0);
        QCoreApplication::processEvents();
        m_view->refreshAnnotations(0);
        isShown = colorAt(middle) == QColor(Qt::black);
    }
    EXPECT_TRUE(isShown);
    QSignalSpy refreshed(m_view.get(), &PDFView::annotationsRefreshed);
    EXPECT_TRUE(m_view->isSharp() || refreshed.wait());
}

TEST_F(PDFViewTest, HasANameForScreenReaders)
{
    EXPECT_FALSE(PDFView().accessibleName().isEmpty());
}

/// Also run with screens of 150 % and 200 %.
class PDFViewPixelTest : public PDFViewFixture
{
};

TEST_F(PDFViewPixelTest, PutsThePagesPixelsOnTheScreensPixels)
{
    PDFWriter writer;
    QByteArray content = "0.3 w ";
    for (int i = 0; i < 12; ++i)
        content += "0 " + QByteArray::number(i * 50) + " m 600 " + QByteArray::number(i * 50 + 130) + " l S ";
    writer.addPage(content + showText(72, 600, "Every pixel where it belongs"), "/MediaBox[0 0 600 700]");
    const ShownDocument shown = documentOf(writer.bytes());

    // The offsets are such that at 150 % the view begins between two pixels.
    QWidget window;
    auto* column = new QVBoxLayout(&window);
    column->setContentsMargins(31, 17, 0, 0);
    auto* view = new PDFView;
    column->addWidget(view);
    window.resize(700, 800);
    view->setDocument(shown);
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));

    const double ratio = view->devicePixelRatioF();
    const auto firstPage = shown.document->page(0);
    QImage expected(pixelSize(firstPage->displaySize(), ratio), QImage::Format_RGB32);
    expected.fill(Qt::white);
    ASSERT_TRUE((*firstPage->contentDisplayList()).draw(expected, {0, 0}, ratio));

    const auto isPixelForPixel = [&] {
        const QImage picture = window.grab().toImage().convertToFormat(QImage::Format_RGB32);
        const QPoint corner = (QPointF(view->viewport()->mapTo(&window, QPoint(0, 0))) * ratio).toPoint();
        const QRect page = view->pageViewport().pageRect(0);
        // The view may also end between two pixels.
        const QRect visible = page & QRect(QPoint(0, 0), view->pageViewport().size() - QSize(1, 1));
        return largestDifference(
                   picture.copy(visible.translated(corner)),
                   expected.copy(visible.translated(-page.topLeft()))) <= seamTolerance;
    };
    EXPECT_TRUE(QTest::qWaitFor(isPixelForPixel)) << "at a ratio of " << ratio;
    // Now the edges of tiles lie before and behind the view's beginning.
    window.resize(500, 400);
    view->scrollBy({77, 231});
    EXPECT_TRUE(QTest::qWaitFor(isPixelForPixel)) << "scrolled, at a ratio of " << ratio;
}

} // namespace
} // namespace pdf
