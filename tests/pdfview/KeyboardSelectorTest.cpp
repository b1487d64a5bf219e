// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdfview/KeyboardSelector.h"

#include "pdf/PDFDocument.h"
#include "pdfview/ViewSupport.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QKeyEvent>
#include <QTest>

namespace pdf {
namespace {

// In Helvetica of 12 points "Hello " is 30.67 points wide and "world" 28.67.
const QByteArray threeLines = showText(72, 700, "Hello world") + showText(72, 680, "Second line") +
                              showText(72, 660, "A third one, much longer");

constexpr auto shift = Qt::ShiftModifier;
constexpr auto controlShift = Qt::ControlModifier | Qt::ShiftModifier;

class KeyboardSelectorTest : public PDFViewFixture
{
protected:
    void showPages(int count, const QByteArray& entries = {})
    {
        PDFWriter writer;
        for (int page = 1; page <= count; ++page)
            writer.addPage(threeLines + showText(72, 90, "Foot " + QByteArray::number(page)), entries);
        show(writer.bytes(), {700, 900});
    }

    void press(Qt::Key key, Qt::KeyboardModifiers modifiers, int times = 1)
    {
        for (int i = 0; i < times; ++i)
            QTest::keyClick(m_view.get(), key, modifiers);
    }
    void click(QPointF point, int page = 0)
    {
        ASSERT_TRUE(QTest::qWaitFor([&] { return m_view->pageToView(page).has_value(); }));
        QTest::mouseClick(
            m_view->viewport(), Qt::LeftButton, {}, m_view->pageToView(page)->map(point).toPoint());
    }
    void select(int page, qsizetype from, qsizetype to)
    {
        m_view->setCurrentSelection(m_view->document()->selection({page, from}, {page, to}));
    }

    QString selected() const
    {
        const auto& selection = m_view->currentSelection();
        return selection ? selection->string() : QStringLiteral("(nothing)");
    }
    testing::AssertionResult comesToSelect(const QString& text)
    {
        if (QTest::qWaitFor([&] { return selected() == text; }))
            return testing::AssertionSuccess();
        return testing::AssertionFailure() << "selected is: " << selected().toStdString();
    }
    testing::AssertionResult comesToSelect(const char* text)
    {
        return comesToSelect(QString::fromUtf8(text));
    }
};

TEST_F(KeyboardSelectorTest, BeginsWithTheFirstTextThatIsVisible)
{
    showPages(2);
    press(Qt::Key_Right, shift);
    EXPECT_EQ(selected(), QStringLiteral("(nothing)")) << "it does not wait for the page";
    EXPECT_TRUE(comesToSelect("H"));
    press(Qt::Key_Right, shift, 3);
    EXPECT_TRUE(comesToSelect("Hell"));
    press(Qt::Key_Left, shift);
    EXPECT_TRUE(comesToSelect("Hel"));

    press(Qt::Key_Escape, {});
    m_view->scrollBy({0, m_view->pageToView(0)->map(QPointF(72, 690)).y()});
    press(Qt::Key_Right, controlShift);
    EXPECT_TRUE(comesToSelect("Second")) << "the first line has gone";
}

TEST_F(KeyboardSelectorTest, GoesOnFromWhereTheUserHasClickedIntoTheText)
{
    showPages(1);
    click({103, 704});
    press(Qt::Key_Right, shift, 2);
    EXPECT_TRUE(comesToSelect("wo"));
    click({300, 400});
    press(Qt::Key_Right, shift, 2);
    EXPECT_TRUE(comesToSelect("He")) << "there is no text where the user has clicked";
}

TEST_F(KeyboardSelectorTest, MovesTheEndThatTheMouseHasMoved)
{
    showPages(1);
    const auto drag = [&](QPointF from, QPointF to) {
        const auto toView = *m_view->pageToView(0);
        QWidget* viewport = m_view->viewport();
        QTest::mousePress(viewport, Qt::LeftButton, {}, toView.map(from).toPoint());
        QMouseEvent move(
            QEvent::MouseMove, toView.map(to), viewport->mapToGlobal(toView.map(to)), Qt::NoButton,
            Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(viewport, &move);
        QTest::mouseRelease(viewport, Qt::LeftButton, {}, toView.map(to).toPoint());
    };
    drag({103, 704}, {132, 704});
    ASSERT_TRUE(comesToSelect("world"));
    press(Qt::Key_Left, shift);
    EXPECT_TRUE(comesToSelect("worl"));
    drag({132, 704}, {103, 704});
    ASSERT_TRUE(comesToSelect("world"));
    press(Qt::Key_Left, shift, 2);
    EXPECT_TRUE(comesToSelect("o world"));
}

TEST_F(KeyboardSelectorTest, MovesTheEndOfWhatAProgramHasSelected)
{
    showPages(1);
    select(0, 6, 11);
    press(Qt::Key_Left, shift, 2);
    EXPECT_TRUE(comesToSelect("wor"));
    press(Qt::Key_Left, shift, 5);
    EXPECT_TRUE(comesToSelect("o ")) << "the end has passed the beginning";
}

TEST_F(KeyboardSelectorTest, GoesByWord)
{
    showPages(1);
    press(Qt::Key_Right, controlShift);
    EXPECT_TRUE(comesToSelect("Hello"));
    press(Qt::Key_Right, controlShift, 2);
    EXPECT_TRUE(comesToSelect("Hello world\nSecond"));
    press(Qt::Key_Left, controlShift, 2);
    EXPECT_TRUE(comesToSelect("Hello "));
    press(Qt::Key_Left, controlShift, 5);
    press(Qt::Key_Right, controlShift);
    EXPECT_TRUE(comesToSelect("Hello")) << "there is nothing before the first word";
}

TEST_F(KeyboardSelectorTest, GoesByLineAndKeepsItsColumn)
{
    showPages(1);
    click({126, 704});
    press(Qt::Key_Down, shift, 3);
    EXPECT_TRUE(comesToSelect(QStringLiteral("d\nSecond line\nA third one, much longer\nFoot 1")));
    press(Qt::Key_Up, shift);
    ASSERT_TRUE(
        QTest::qWaitFor([&] { return selected().startsWith(QStringLiteral("d\nSecond line\nA th")); }));
    EXPECT_FALSE(selected().endsWith(QStringLiteral("longer"))) << "as far as in the first line";
    EXPECT_GT(selected().size(), 22) << "and not only as far as in the shorter one: "
                                     << selected().toStdString();
    press(Qt::Key_Up, shift, 2);
    EXPECT_TRUE(comesToSelect("(nothing)"));
    press(Qt::Key_Up, shift);
    EXPECT_TRUE(comesToSelect("Hello worl")) << "above the first line is its beginning";
}

TEST_F(KeyboardSelectorTest, GoesToTheEndsOfTheLine)
{
    showPages(1);
    click({103, 704});
    press(Qt::Key_End, shift);
    EXPECT_TRUE(comesToSelect("world"));
    press(Qt::Key_End, shift);
    EXPECT_TRUE(comesToSelect("world"));
    press(Qt::Key_Home, shift);
    EXPECT_TRUE(comesToSelect("Hello "));
    EXPECT_EQ(m_view->pageViewport().y(), 0);
}

TEST_F(KeyboardSelectorTest, GoesToTheEndsOfTheDocument)
{
    showPages(30);
    select(10, 0, 5);
    press(Qt::Key_End, controlShift);
    ASSERT_TRUE(QTest::qWaitFor([&] { return selected().endsWith(QStringLiteral("Foot 30\n")); }));
    EXPECT_TRUE(selected().startsWith(QStringLiteral("Hello world\nSecond")));
    EXPECT_TRUE(QTest::qWaitFor([&] { return m_view->currentPageIndex() == 29; }));
    press(Qt::Key_Left, shift);
    EXPECT_TRUE(QTest::qWaitFor([&] { return selected().endsWith(QStringLiteral("Foot 3")); }));
    press(Qt::Key_Home, controlShift);
    ASSERT_TRUE(QTest::qWaitFor([&] { return selected().endsWith(QStringLiteral("Foot 10\n")); }));
    EXPECT_TRUE(QTest::qWaitFor([&] { return m_view->currentPageIndex() == 0; }));
}

TEST_F(KeyboardSelectorTest, GoesFromPageToPage)
{
    PDFWriter writer;
    writer.addPage(showText(72, 700, "first"));
    writer.addPage({});
    writer.addPage({});
    writer.addPage({});
    writer.addPage({});
    writer.addPage(showText(72, 700, "last one"));
    show(writer.bytes(), {700, 900});
    select(0, 0, 5);
    press(Qt::Key_Right, controlShift);
    EXPECT_TRUE(comesToSelect("first\nlast")) << "over pages without text";
    EXPECT_TRUE(QTest::qWaitFor([&] { return m_view->currentPageIndex() == 5; }));
    press(Qt::Key_Left, controlShift, 2);
    EXPECT_TRUE(comesToSelect("(nothing)"));
    press(Qt::Key_Down, shift);
    EXPECT_TRUE(comesToSelect("first\n"));
    press(Qt::Key_Down, shift);
    EXPECT_TRUE(comesToSelect("first\nlast one\n")) << "below the last line is its end";
    press(Qt::Key_Down, shift, 3);
    press(Qt::Key_Left, shift);
    EXPECT_TRUE(comesToSelect("first\nlast on"));
}

TEST_F(KeyboardSelectorTest, BringsTheMovingEndIntoView)
{
    showPages(3);
    m_view->resize(700, 300);
    click({80, 704});
    press(Qt::Key_Down, shift, 3);
    ASSERT_TRUE(QTest::qWaitFor([&] { return selected().contains(QStringLiteral("third")); }));
    const auto isInView = [&](QPointF point) {
        return m_view->viewport()->rect().contains(m_view->pageToView(0)->map(point).toPoint());
    };
    EXPECT_TRUE(QTest::qWaitFor([&] { return isInView({80, 90}); }));
    press(Qt::Key_Home, controlShift);
    EXPECT_TRUE(QTest::qWaitFor([&] { return isInView({72, 704}); }));
}

TEST_F(KeyboardSelectorTest, ClearsTheSelectionWithEscape)
{
    showPages(1);
    select(0, 0, 5);
    QKeyEvent first(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
    QApplication::sendEvent(m_view.get(), &first);
    EXPECT_TRUE(first.isAccepted());
    EXPECT_EQ(m_view->currentSelection(), std::nullopt);
    QKeyEvent second(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
    second.setAccepted(true);
    QApplication::sendEvent(m_view.get(), &second);
    EXPECT_FALSE(second.isAccepted()) << "others may have a use for it";
}

TEST_F(KeyboardSelectorTest, GoesTheWayThatRightToLeftTextIsRead)
{
    // Courier whose capital letters are the Hebrew alphabet.
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
    press(Qt::Key_Left, shift, 2);
    EXPECT_TRUE(comesToSelect(QString(QChar(0x05D0)) + QChar(0x05D1)));
    press(Qt::Key_Right, shift);
    EXPECT_TRUE(comesToSelect(QString(QChar(0x05D0))));
}

TEST_F(KeyboardSelectorTest, TakesCharactersOfTwoUnitsWhole)
{
    PDFWriter writer;
    const int unicode = writer.addStream("/CIDInit /ProcSet findresource begin 12 dict begin begincmap\n"
                                         "1 begincodespacerange <00> <FF> endcodespacerange\n"
                                         "2 beginbfchar <41> <D834DD1E> <42> <0062> endbfchar\n"
                                         "endcmap end end");
    const int font = writer.add(
        "<</Type/Font/Subtype/Type1/BaseFont/Courier/ToUnicode " + QByteArray::number(unicode) + " 0 R>>");
    writer.setFonts("/F2 " + QByteArray::number(font) + " 0 R");
    writer.addPage("BT /F2 10 Tf 100 700 Td (ABA) Tj ET");
    show(writer.bytes(), {700, 900});
    const QString clef = QString::fromUcs4(U"\U0001D11E");
    press(Qt::Key_Right, shift);
    EXPECT_TRUE(comesToSelect(clef));
    press(Qt::Key_Right, shift, 2);
    EXPECT_TRUE(comesToSelect(clef + QLatin1Char('b') + clef));
    press(Qt::Key_Left, shift);
    EXPECT_TRUE(comesToSelect(clef + QLatin1Char('b')));
}

TEST_F(KeyboardSelectorTest, DoesNothingWhereThereIsNoText)
{
    show(colouredDocument(3));
    press(Qt::Key_Right, shift, 3);
    press(Qt::Key_End, controlShift);
    EXPECT_EQ(selected(), QStringLiteral("(nothing)"));
    m_view->setDocument({});
    press(Qt::Key_Right, shift);
    EXPECT_EQ(selected(), QStringLiteral("(nothing)"));
}

} // namespace
} // namespace pdf
