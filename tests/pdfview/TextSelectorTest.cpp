// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdfview/TextSelector.h"

#include "pdf/PDFDocument.h"
#include "pdfview/ViewSupport.h"
#include "support/Printing.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QClipboard>
#include <QSignalSpy>
#include <QTest>

namespace pdf {
namespace {

// In Helvetica of 12 points "Hello " is 30.67 points wide and "world" 28.67.
const QByteArray twoLines = showText(72, 700, "Hello world") + showText(72, 680, "Second line");

class TextSelectorTest : public PDFViewFixture
{
protected:
    void showPages(int count, const QByteArray& entries = {})
    {
        PDFWriter writer;
        for (int page = 1; page <= count; ++page)
            writer.addPage(twoLines + showText(72, 90, "Foot " + QByteArray::number(page)), entries);
        show(writer.bytes(), {700, 900});
    }

    /// Scroll bars come and go with the scale, and the pages move with them.
    void zoomTo(double scale)
    {
        m_view->setScaleFactor(scale);
        QCoreApplication::processEvents();
    }

    /// The place in the viewport of a point of a page.
    QPoint at(QPointF point, int page = 0)
    {
        const auto toView = m_view->pageToView(page);
        EXPECT_TRUE(toView) << "it is not known where the page lies";
        return toView ? toView->map(point).toPoint() : QPoint();
    }

    void press(QPoint place, Qt::KeyboardModifiers modifiers = {})
    {
        QTest::mousePress(m_view->viewport(), Qt::LeftButton, modifiers, place);
    }
    /// With the left button down.
    void move(QPoint place)
    {
        QMouseEvent event(
            QEvent::MouseMove, place, m_view->viewport()->mapToGlobal(place), Qt::NoButton, Qt::LeftButton,
            Qt::NoModifier);
        QApplication::sendEvent(m_view->viewport(), &event);
    }
    void release(QPoint place) { QTest::mouseRelease(m_view->viewport(), Qt::LeftButton, {}, place); }
    void drag(QPoint from, QPoint to)
    {
        press(from);
        move((from + to) / 2);
        move(to);
        release(to);
    }
    void click(QPoint place, Qt::KeyboardModifiers modifiers = {})
    {
        QTest::mouseClick(m_view->viewport(), Qt::LeftButton, modifiers, place);
    }
    void doubleClick(QPoint place) { QTest::mouseDClick(m_view->viewport(), Qt::LeftButton, {}, place); }

    QString selected() const
    {
        const auto& selection = m_view->currentSelection();
        return selection ? selection->string() : QStringLiteral("(nothing)");
    }
    bool comesToSelect(const QString& text)
    {
        return QTest::qWaitFor([&] { return selected() == text; });
    }
};

TEST_F(TextSelectorTest, SelectsWhatIsDraggedOver)
{
    showPages(1);
    drag(at({103, 704}), at({132, 701}));
    EXPECT_TRUE(comesToSelect(QStringLiteral("world"))) << selected().toStdString();
    drag(at({132, 701}), at({73, 701}));
    EXPECT_TRUE(comesToSelect(QStringLiteral("Hello world"))) << selected().toStdString();
}

TEST_F(TextSelectorTest, SelectsOverLines)
{
    showPages(1);
    drag(at({103, 704}), at({112, 683}));
    EXPECT_TRUE(comesToSelect(QStringLiteral("world\nSecond"))) << selected().toStdString();
}

TEST_F(TextSelectorTest, ColoursWhatIsSelectedAndNothingElse)
{
    showPages(1);
    const QPoint space = at({101, 698.5});
    const QPoint beside = at({50, 698.5});
    ASSERT_EQ(colorAt(space), QColor(Qt::white));
    drag(at({73, 704}), at({132, 701}));
    ASSERT_TRUE(comesToSelect(QStringLiteral("Hello world")));
    const QColor selectedColor = colorAt(space);
    EXPECT_NE(selectedColor, QColor(Qt::white));
    EXPECT_EQ(colorAt(beside), QColor(Qt::white));
    click(at({300, 400}));
    EXPECT_TRUE(becomes(space, Qt::white));
}

TEST_F(TextSelectorTest, AnnouncesEveryOtherSelectionOnce)
{
    showPages(1);
    drag(at({103, 704}), at({132, 701}));
    ASSERT_TRUE(comesToSelect(QStringLiteral("world")));
    QSignalSpy changed(m_view.get(), &PDFView::selectionChanged);
    click(at({300, 400}));
    EXPECT_EQ(changed.count(), 1) << "the selection has ended";
    click(at({300, 400}));
    EXPECT_EQ(changed.count(), 1);
    press(at({103, 704}));
    move(at({132, 701}));
    EXPECT_EQ(changed.count(), 2);
    move(at({133, 702}));
    release(at({133, 702}));
    EXPECT_EQ(changed.count(), 2) << "another place, the same text";
}

TEST_F(TextSelectorTest, SelectsAWordByADoubleClickAndALineByATripleOne)
{
    showPages(1);
    const QPoint place = at({110, 704});
    doubleClick(place);
    EXPECT_TRUE(comesToSelect(QStringLiteral("world"))) << selected().toStdString();
    press(place);
    release(place);
    EXPECT_TRUE(comesToSelect(QStringLiteral("Hello world"))) << selected().toStdString();
}

TEST_F(TextSelectorTest, DoesNotTakeASlowThirdClickForATripleOne)
{
    showPages(1);
    const QPoint place = at({110, 704});
    doubleClick(place);
    ASSERT_TRUE(comesToSelect(QStringLiteral("world")));
    QTest::qWait(QApplication::doubleClickInterval() + 50);
    click(place);
    EXPECT_EQ(m_view->currentSelection(), std::nullopt);
}

TEST_F(TextSelectorTest, GoesOnByWordsAfterADoubleClick)
{
    showPages(1);
    doubleClick(at({80, 684}));
    ASSERT_TRUE(comesToSelect(QStringLiteral("Second")));
    QMouseEvent held(
        QEvent::MouseButtonDblClick, at({110, 704}), m_view->viewport()->mapToGlobal(at({110, 704})),
        Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(m_view->viewport(), &held);
    move(at({75, 683}));
    EXPECT_EQ(selected(), QStringLiteral("world\nSecond"));
    move(at({75, 704}));
    EXPECT_EQ(selected(), QStringLiteral("Hello world"));
    release(at({75, 704}));
    EXPECT_EQ(selected(), QStringLiteral("Hello world"));
}

TEST_F(TextSelectorTest, ExtendsWithShift)
{
    showPages(1);
    click(at({103, 704}));
    click(at({112, 683}), Qt::ShiftModifier);
    EXPECT_TRUE(comesToSelect(QStringLiteral("world\nSecond"))) << selected().toStdString();
    click(at({73, 704}), Qt::ShiftModifier);
    EXPECT_TRUE(comesToSelect(QStringLiteral("Hello ")))
        << "the first end stays: " << selected().toStdString();
}

TEST_F(TextSelectorTest, WaitsForTheTextOfThePageRatherThanTheOtherWayRound)
{
    showPages(1);
    // Nothing has had the time to be read.
    drag(at({103, 704}), at({132, 701}));
    EXPECT_EQ(m_view->currentSelection(), std::nullopt);
    EXPECT_TRUE(comesToSelect(QStringLiteral("world")));
}

TEST_F(TextSelectorTest, SelectsOverPages)
{
    showPages(2);
    zoomTo(0.5);
    drag(at({70, 95}, 0), at({140, 701}, 1));
    EXPECT_TRUE(comesToSelect(QStringLiteral("Foot 1\nHello world"))) << selected().toStdString();
    ASSERT_EQ(m_view->currentSelection()->parts().size(), 2U);
    EXPECT_EQ(m_view->currentSelection()->parts()[1].page, 1);
}

TEST_F(TextSelectorTest, SelectsOverPagesThatAreFarApart)
{
    showPages(12);
    click(at({72, 95}, 0));
    m_view->goToPage(10);
    ASSERT_TRUE(QTest::qWaitFor([&] { return m_view->pageToView(10).has_value(); }));
    click(at({140, 701}, 10), Qt::ShiftModifier);
    ASSERT_TRUE(QTest::qWaitFor([&] { return m_view->currentSelection().has_value(); }));
    const QString text = selected();
    EXPECT_TRUE(text.startsWith(QStringLiteral("Foot 1\nHello world"))) << text.toStdString();
    EXPECT_TRUE(text.endsWith(QStringLiteral("Foot 10\nHello world"))) << text.toStdString();
    EXPECT_EQ(m_view->currentSelection()->parts().size(), 11U);
    m_view->goToPage(5);
    EXPECT_TRUE(QTest::qWaitFor([&] {
        return m_view->pageToView(5) && colorAt(at({101, 698.5}, 5)) != QColor(Qt::white) &&
               colorAt(at({50, 698.5}, 5)) == QColor(Qt::white);
    })) << "the pages in between are coloured, too";
}

TEST_F(TextSelectorTest, SelectsAllAndCopiesByTheUsualKeys)
{
    showPages(30);
    QApplication::clipboard()->setText(QStringLiteral("before"));
    QTest::keyClick(m_view.get(), Qt::Key_A, Qt::ControlModifier);
    QTest::keyClick(m_view.get(), Qt::Key_C, Qt::ControlModifier);
    QString everything;
    for (int page = 1; page <= 30; ++page)
        everything += QStringLiteral("Hello world\nSecond line\nFoot %1\n").arg(page);
    EXPECT_TRUE(QTest::qWaitFor([&] { return QApplication::clipboard()->text() == everything; }))
        << QApplication::clipboard()->text().toStdString();
    EXPECT_EQ(selected(), everything);
}

TEST_F(TextSelectorTest, LeavesTheClipboardAloneWhereNothingIsSelected)
{
    showPages(1);
    QApplication::clipboard()->setText(QStringLiteral("before"));
    QTest::keyClick(m_view.get(), Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QApplication::clipboard()->text(), QStringLiteral("before"));
}

TEST_F(TextSelectorTest, SelectsOnPagesThatAreTurned)
{
    for (const char* rotation : {"/Rotate 90", "/Rotate 180", "/Rotate 270"}) {
        showPages(1, rotation);
        zoomTo(0.8);
        drag(at({103, 704}), at({140, 701}));
        EXPECT_TRUE(comesToSelect(QStringLiteral("world"))) << rotation << ": " << selected().toStdString();
        EXPECT_NE(colorAt(at({115, 709})), QColor(Qt::white)) << rotation;
        EXPECT_EQ(colorAt(at({60, 704})), QColor(Qt::white)) << rotation;
    }
}

TEST_F(TextSelectorTest, SelectsRightToLeftTextAsItIsRead)
{
    // Courier whose capital letters are the Hebrew alphabet; each letter is 6 points wide.
    PDFWriter writer;
    const int unicode = writer.addStream("/CIDInit /ProcSet findresource begin 12 dict begin begincmap\n"
                                         "1 begincodespacerange <00> <FF> endcodespacerange\n"
                                         "2 beginbfrange <20> <40> <0020> <41> <5A> <05D0> endbfrange\n"
                                         "endcmap end end");
    const int font = writer.add(
        "<</Type/Font/Subtype/Type1/BaseFont/Courier/ToUnicode " + QByteArray::number(unicode) + " 0 R>>");
    writer.setFonts("/F2 " + QByteArray::number(font) + " 0 R");
    writer.addPage("BT /F2 10 Tf 100 700 Td (FED CBA) Tj ET");
    show(writer.bytes(), {700, 900});

    // From the right edge of the line to the middle of its first word.
    drag(at({141, 703}), at({129, 703}));
    const QString alefBet = QString(QChar(0x05D0)) + QChar(0x05D1);
    EXPECT_TRUE(comesToSelect(alefBet)) << selected().toStdString();
    EXPECT_NE(colorAt(at({136, 709})), QColor(Qt::white)) << "the right end of the line";
    EXPECT_EQ(colorAt(at({106, 709})), QColor(Qt::white)) << "its left end";
}

TEST_F(TextSelectorTest, ScrollsWhileThePointerIsHeldBelowTheView)
{
    showPages(3);
    press(at({73, 704}));
    move({200, m_view->viewport()->height() + 100});
    EXPECT_TRUE(QTest::qWaitFor([&] { return m_view->currentPageIndex() > 0; }));
    release({200, m_view->viewport()->height() + 100});
    const qint64 stopped = m_view->pageViewport().y();
    QTest::qWait(50);
    EXPECT_EQ(m_view->pageViewport().y(), stopped);
    ASSERT_TRUE(QTest::qWaitFor([&] { return m_view->currentSelection().has_value(); }));
    EXPECT_TRUE(selected().startsWith(QStringLiteral("Hello world\nSecond line\nFoot 1")))
        << selected().toStdString();
}

TEST_F(TextSelectorTest, ShowsATextCursorOverText)
{
    showPages(1);
    const auto cursorAt = [&](QPoint place) {
        QTest::mouseMove(m_view->viewport(), place);
        return m_view->viewport()->cursor().shape();
    };
    EXPECT_TRUE(QTest::qWaitFor([&] {
        cursorAt(at({300, 400}));
        return cursorAt(at({110, 704})) == Qt::IBeamCursor;
    }));
    EXPECT_EQ(cursorAt(at({300, 400})), Qt::ArrowCursor);
}

TEST_F(TextSelectorTest, TakesASelectionOfTheDocumentOnly)
{
    showPages(2);
    const auto document = m_view->document();
    m_view->setCurrentSelection(document->selection({1, 0}, {1, 5}));
    EXPECT_EQ(selected(), QStringLiteral("Hello"));
    m_view->setCurrentSelection(documentOf(colouredDocument(1)).document->selection({0, 0}, {0, 5}));
    EXPECT_EQ(m_view->currentSelection(), std::nullopt);
}

TEST_F(TextSelectorTest, ForgetsTheSelectionWithTheDocument)
{
    showPages(1);
    drag(at({103, 704}), at({132, 701}));
    ASSERT_TRUE(comesToSelect(QStringLiteral("world")));
    QSignalSpy changed(m_view.get(), &PDFView::selectionChanged);
    m_view->setDocument(documentOf(colouredDocument(1)));
    EXPECT_EQ(m_view->currentSelection(), std::nullopt);
    EXPECT_EQ(changed.count(), 1);
}

TEST_F(TextSelectorTest, TellsThePageUnderAPoint)
{
    showPages(2);
    zoomTo(0.5);
    const QRectF first = m_view->pageRect(0);
    const QPointF between(first.center().x(), first.bottom() + 2);
    EXPECT_EQ(m_view->page(first.center(), false), 0);
    EXPECT_EQ(m_view->page(between, false), -1);
    EXPECT_EQ(m_view->page(between, true), 0);
    EXPECT_EQ(m_view->page(m_view->pageRect(1).topLeft() - QPointF(9, 1), true), 1);
    m_view->setDocument({});
    EXPECT_EQ(m_view->page(between, true), -1);
}

TEST_F(TextSelectorTest, ConvertsBetweenPageAndView)
{
    PDFWriter writer;
    writer.addPage({}, "/MediaBox[0 0 300 400]/CropBox[100 100 300 400]/Rotate 90");
    show(writer.bytes());
    zoomTo(2.0);
    const auto toView = m_view->pageToView(0);
    ASSERT_TRUE(toView);
    const QPointF corner = m_view->pageRect(0).topLeft();
    // Turned clockwise, the lower left corner of the crop box is the upper left of what is shown.
    EXPECT_EQ(toView->map(QPointF(100, 100)), corner);
    EXPECT_EQ(toView->map(QPointF(100, 110)), corner + QPointF(20, 0));
    EXPECT_FALSE(m_view->pageToView(1));
}

} // namespace
} // namespace pdf
