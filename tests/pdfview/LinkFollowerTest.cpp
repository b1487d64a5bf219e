// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdfview/LinkFollower.h"

#include "pdfview/ViewSupport.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QHelpEvent>
#include <QSignalSpy>
#include <QTest>
#include <QToolTip>
#include <QUrl>

#include <cmath>

namespace pdf {
namespace {

// Where the links of the tests lie, in page space.
const QRectF firstLink(50, 340, 100, 20);
const QRectF secondLink(50, 300, 100, 20);

QByteArray rectText(const QRectF& rect)
{
    QByteArray text;
    for (const double value : {rect.left(), rect.top(), rect.right(), rect.bottom()})
        text += QByteArray::number(value) + ' ';
    return text;
}

QByteArray linkEntry(const QRectF& rect, const QByteArray& action)
{
    return "<</Type/Annot/Subtype/Link/Border[0 0 0]/Rect[" + rectText(rect) + "]" + action + ">>";
}

QByteArray toAddress(const QByteArray& address)
{
    return "/A<</S/URI/URI(" + address + ")>>";
}

QByteArray toPlace(int page, const QByteArray& place)
{
    return "/Dest[" + QByteArray::number(page) + " " + place + "]";
}

class LinkFollowerTest : public PDFViewFixture
{
protected:
    /// Twenty pages of 300 by 400 points with these annotations on the first.
    void showLinks(const QByteArray& annotations, const QByteArray& pageEntries = {})
    {
        PDFWriter writer;
        for (int page = 0; page < 20; ++page) {
            const QByteArray entries =
                page == 0 ? "/Annots[" + annotations + "]" + pageEntries : QByteArray();
            addColouredPage(writer, colorOfPage(page), {300, 400}, entries);
        }
        show(writer.bytes());
        m_view->activateWindow();
        ASSERT_TRUE(QTest::qWaitFor([this] { return m_view->isActiveWindow(); }));
        m_view->setFocus();
    }

    /// On the screen.
    QPoint placeOf(const QRectF& link) const { return m_view->pageToView(0)->map(link.center()).toPoint(); }

    bool isHandAt(QPoint place)
    {
        return QTest::qWaitFor([&] {
            QTest::mouseMove(m_view->viewport(), place + QPoint(1, 0));
            QTest::mouseMove(m_view->viewport(), place);
            return m_view->viewport()->cursor().shape() == Qt::PointingHandCursor;
        });
    }

    void clickLink(const QRectF& link)
    {
        ASSERT_TRUE(isHandAt(placeOf(link))) << "there is no link";
        QTest::mouseClick(m_view->viewport(), Qt::LeftButton, {}, placeOf(link));
    }

    /// How far the upper edge of the page is above the upper edge of the view, in view points.
    double above(int page) const { return -m_view->pageRect(page).top(); }

    /// Whether that becomes the distance, once the page is read.
    bool comesAbove(int page, double distance)
    {
        return QTest::qWaitFor([&] { return std::abs(above(page) - distance) <= 1; });
    }

    QString hintAt(QPoint place)
    {
        QHelpEvent event(QEvent::ToolTip, place, m_view->viewport()->mapToGlobal(place));
        QApplication::sendEvent(m_view->viewport(), &event);
        return QToolTip::isVisible() ? QToolTip::text() : QString();
    }
};

TEST_F(LinkFollowerTest, BringsThePlaceToTheUpperEdge)
{
    showLinks(linkEntry(firstLink, toPlace(7, "/XYZ null 300 null")));
    clickLink(firstLink);
    EXPECT_EQ(m_view->currentPageIndex(), 7);
    EXPECT_TRUE(comesAbove(7, 100 - 12)) << "the place is a margin below the edge";
    EXPECT_EQ(m_view->scaleFactor(), 1.0);
}

TEST_F(LinkFollowerTest, GoesToTheTopOfAPageThatIsShownWhole)
{
    showLinks(linkEntry(firstLink, toPlace(3, "/Fit")));
    clickLink(firstLink);
    EXPECT_EQ(m_view->currentPageIndex(), 3);
    EXPECT_TRUE(comesAbove(3, -12));
}

TEST_F(LinkFollowerTest, TakesTheScaleThatTheLinkAsksFor)
{
    showLinks(linkEntry(firstLink, toPlace(2, "/XYZ 100 200 2")));
    clickLink(firstLink);
    EXPECT_EQ(m_view->scaleFactor(), 2.0);
    EXPECT_TRUE(comesAbove(2, 400 - 12));
    EXPECT_NEAR(m_view->pageRect(2).left(), 12 - 200, 1) << "and its left";
}

TEST_F(LinkFollowerTest, BoundsTheScaleToWhatCanBeZoomedTo)
{
    showLinks(linkEntry(firstLink, toPlace(2, "/XYZ 100 200 64")));
    clickLink(firstLink);
    EXPECT_EQ(m_view->scaleFactor(), PDFView::largestScaleFactor);
}

TEST_F(LinkFollowerTest, FindsThePlaceOnATurnedPage)
{
    PDFWriter writer;
    addColouredPage(
        writer, colorOfPage(0), {300, 400},
        "/Annots[" + linkEntry(firstLink, toPlace(1, "/XYZ 200 100 null")) + "]");
    addColouredPage(writer, colorOfPage(1), {300, 1200}, "/Rotate 90");
    addColouredPage(writer, colorOfPage(2), {300, 1200});
    show(writer.bytes());
    clickLink(firstLink);
    // Turned to the right, the left edge of the page is the upper one, and what is low is at the left.
    EXPECT_TRUE(comesAbove(1, 200 - 12));
    EXPECT_NEAR(m_view->pageRect(1).left(), 12 - 100, 1);
}

TEST_F(LinkFollowerTest, ReturnsToWhereTheLinkWasFollowed)
{
    showLinks(
        linkEntry(firstLink, toPlace(7, "/XYZ null 300 null")) + linkEntry(secondLink, toPlace(9, "/Fit")));
    m_view->scrollBy({0, 30});
    clickLink(firstLink);
    ASSERT_EQ(m_view->currentPageIndex(), 7);
    QTest::keyClick(m_view.get(), Qt::Key_Left, Qt::AltModifier);
    EXPECT_EQ(m_view->currentPageIndex(), 0);
    EXPECT_TRUE(comesAbove(0, 30 - 12));
    QTest::keyClick(m_view.get(), Qt::Key_Right, Qt::AltModifier);
    EXPECT_TRUE(comesAbove(7, 100 - 12));
    QTest::keyClick(m_view.get(), Qt::Key_Right, Qt::AltModifier);
    EXPECT_TRUE(comesAbove(7, 100 - 12)) << "there is nothing further";
    m_view->goBack();
    clickLink(secondLink);
    EXPECT_EQ(m_view->currentPageIndex(), 9);
    m_view->goForward();
    EXPECT_EQ(m_view->currentPageIndex(), 9) << "a new way has begun";
    m_view->goBack();
    EXPECT_TRUE(comesAbove(0, 30 - 12));
    m_view->goBack();
    EXPECT_TRUE(comesAbove(0, 30 - 12)) << "there is nothing before";
}

TEST_F(LinkFollowerTest, OnlyReportsAddresses)
{
    showLinks(
        linkEntry(firstLink, toAddress("https://quillo.example/a")) +
        linkEntry(secondLink, toAddress("mailto:someone@quillo.example")));
    QSignalSpy followed(m_view.get(), &PDFView::addressFollowed);
    clickLink(firstLink);
    clickLink(secondLink);
    ASSERT_EQ(followed.size(), 2);
    EXPECT_EQ(followed[0][0].toUrl(), QUrl(QStringLiteral("https://quillo.example/a")));
    EXPECT_EQ(followed[1][0].toUrl(), QUrl(QStringLiteral("mailto:someone@quillo.example")));
    EXPECT_TRUE(comesAbove(0, -12));
}

TEST_F(LinkFollowerTest, InertLinksAreNoLinks)
{
    showLinks(
        linkEntry(firstLink, toAddress("file:///etc/passwd")) + linkEntry(secondLink, toPlace(1, "/Fit")) +
        linkEntry(secondLink, "/A<</S/JavaScript/JS(app.alert)>>"));
    QSignalSpy followed(m_view.get(), &PDFView::addressFollowed);
    // The page is read once a link that answers has been found; there is none that could.
    QTest::qWait(300);
    for (const QRectF& link : {firstLink, secondLink}) {
        QTest::mouseMove(m_view->viewport(), placeOf(link));
        EXPECT_NE(m_view->viewport()->cursor().shape(), Qt::PointingHandCursor);
        EXPECT_EQ(hintAt(placeOf(link)), QString());
        QTest::mouseClick(m_view->viewport(), Qt::LeftButton, {}, placeOf(link));
    }
    EXPECT_TRUE(followed.isEmpty());
    EXPECT_EQ(m_view->currentPageIndex(), 0) << "the script lies on top of the link to a page";
}

TEST_F(LinkFollowerTest, TellsWhereALinkLeads)
{
    showLinks(
        linkEntry(firstLink, toAddress("https://quillo.example/p\xC3\xA4th?a=<b>")) +
        linkEntry(secondLink, toPlace(11, "/Fit")));
    ASSERT_TRUE(isHandAt(placeOf(firstLink)));
    EXPECT_EQ(hintAt(placeOf(firstLink)), QStringLiteral("https://quillo.example/p%C3%A4th?a=%3Cb%3E"));
    EXPECT_EQ(hintAt(placeOf(secondLink)), QStringLiteral("Page 12"));
    hintAt({3, 3});
    EXPECT_TRUE(QTest::qWaitFor([] { return !QToolTip::isVisible(); })) << "beside the links there is none";
}

TEST_F(LinkFollowerTest, ShortensTheHintOfALongAddress)
{
    showLinks(linkEntry(firstLink, toAddress("https://quillo.example/" + QByteArray(1000, 'a'))));
    ASSERT_TRUE(isHandAt(placeOf(firstLink)));
    const QString hint = hintAt(placeOf(firstLink));
    EXPECT_EQ(hint.size(), 120);
    EXPECT_TRUE(hint.endsWith(QChar(u'\u2026')));
}

TEST_F(LinkFollowerTest, DraggingFromALinkDoesNotFollowIt)
{
    showLinks(linkEntry(firstLink, toPlace(3, "/Fit")));
    const QPoint place = placeOf(firstLink);
    ASSERT_TRUE(isHandAt(place));
    QTest::mousePress(m_view->viewport(), Qt::LeftButton, {}, place - QPoint(20, 0));
    QTest::mouseMove(m_view->viewport(), place);
    QTest::mouseRelease(m_view->viewport(), Qt::LeftButton, {}, place + QPoint(20, 0));
    EXPECT_EQ(m_view->currentPageIndex(), 0);
    QTest::mousePress(m_view->viewport(), Qt::LeftButton, {}, place);
    QTest::mouseRelease(m_view->viewport(), Qt::LeftButton, {}, placeOf(secondLink));
    EXPECT_EQ(m_view->currentPageIndex(), 0) << "the button was released elsewhere";
    QTest::mouseClick(m_view->viewport(), Qt::RightButton, {}, place);
    QTest::mouseClick(m_view->viewport(), Qt::LeftButton, Qt::ShiftModifier, place);
    EXPECT_EQ(m_view->currentPageIndex(), 0) << "these clicks mean something else";
}

TEST_F(LinkFollowerTest, WalksTheLinksWithTheTabKey)
{
    showLinks(
        linkEntry(firstLink, toAddress("https://quillo.example/a")) +
        linkEntry(QRectF(10, 10, 20, 20), "/A<</S/Launch/F(x)>>") +
        linkEntry(secondLink, toPlace(3, "/Fit")));
    QSignalSpy followed(m_view.get(), &PDFView::addressFollowed);
    ASSERT_TRUE(isHandAt(placeOf(firstLink)));
    const QPointF besideFirst = m_view->pageToView(0)->mapRect(firstLink).topLeft() + QPointF(40, -3);
    const QColor paper = colorAt(besideFirst);
    QTest::keyClick(m_view.get(), Qt::Key_Return);
    EXPECT_TRUE(followed.isEmpty()) << "no link has the keyboard";

    QTest::keyClick(m_view.get(), Qt::Key_Tab);
    EXPECT_NE(colorAt(besideFirst), paper) << "a ring shows which link it is";
    QTest::keyClick(m_view.get(), Qt::Key_Return);
    EXPECT_EQ(followed.size(), 1);
    QTest::keyClick(m_view.get(), Qt::Key_Tab);
    EXPECT_EQ(colorAt(besideFirst), paper);
    QTest::keyClick(m_view.get(), Qt::Key_Backtab);
    EXPECT_NE(colorAt(besideFirst), paper);
    QTest::keyClick(m_view.get(), Qt::Key_Escape);
    EXPECT_EQ(colorAt(besideFirst), paper);

    QTest::keyClick(m_view.get(), Qt::Key_Backtab);
    QTest::keyClick(m_view.get(), Qt::Key_Enter);
    EXPECT_EQ(m_view->currentPageIndex(), 3) << "from the other side the last link is the first";
}

TEST_F(LinkFollowerTest, ShowsTheLinkThatIsWalkedTo)
{
    const QRectF low(50, 20, 100, 20);
    showLinks(linkEntry(firstLink, toPlace(3, "/Fit")) + linkEntry(low, toPlace(4, "/Fit")));
    m_view->setScaleFactor(3.0);
    ASSERT_TRUE(isHandAt(placeOf(firstLink)));
    QTest::keyClick(m_view.get(), Qt::Key_Tab);
    QTest::keyClick(m_view.get(), Qt::Key_Tab);
    const QRectF shown = m_view->pageToView(0)->mapRect(low);
    EXPECT_TRUE(QRectF(m_view->viewport()->rect()).contains(shown));
    QTest::keyClick(m_view.get(), Qt::Key_Return);
    EXPECT_EQ(m_view->currentPageIndex(), 4);
}

TEST_F(LinkFollowerTest, BeginsToWalkWhereTheViewIs)
{
    const QRectF low(50, 20, 100, 20);
    showLinks(linkEntry(firstLink, toPlace(3, "/Fit")) + linkEntry(low, toPlace(4, "/Fit")));
    ASSERT_TRUE(isHandAt(placeOf(firstLink)));
    m_view->scrollBy({0, 200});
    QTest::keyClick(m_view.get(), Qt::Key_Tab);
    QTest::keyClick(m_view.get(), Qt::Key_Return);
    EXPECT_EQ(m_view->currentPageIndex(), 4) << "the first link has been scrolled past";
}

TEST_F(LinkFollowerTest, GoesToAPlaceOnAPageThatIsNotReadYet)
{
    showLinks({});
    m_view->goTo({15, std::nullopt, 350.0, std::nullopt});
    EXPECT_EQ(m_view->currentPageIndex(), 15);
    EXPECT_TRUE(comesAbove(15, 50 - 12));
}

TEST_F(LinkFollowerTest, LeavesAUserAloneWhoHasGoneOn)
{
    showLinks({});
    m_view->goTo({15, std::nullopt, 350.0, std::nullopt});
    m_view->goToPage(2);
    ASSERT_TRUE(becomes({200, 200}, colorOfPage(2)));
    m_view->goToPage(15);
    ASSERT_TRUE(becomes({200, 200}, colorOfPage(15)));
    EXPECT_TRUE(comesAbove(15, -12));
}

} // namespace
} // namespace pdf
