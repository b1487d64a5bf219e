// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdfview/AccessiblePDFView.h"

#include "pdf/PDFDocument.h"
#include "pdfview/ViewSupport.h"

#include <gtest/gtest.h>

#include <QTest>

#include <algorithm>

namespace pdf {
namespace {

const QByteArray twoLines = showText(72, 700, "Hello world") + showText(72, 680, "Second line");
const QString textOfPage = QStringLiteral("Hello world\nSecond line\n");

class AccessiblePDFViewTest : public PDFViewFixture
{
protected:
    void showPages(int count, const QByteArray& entries = {})
    {
        PDFWriter writer;
        for (int page = 1; page <= count; ++page) {
            const bool isFirst = page == 1;
            writer.addPage(
                isFirst ? twoLines : showText(72, 700, "Page " + QByteArray::number(page)), entries);
        }
        show(writer.bytes(), {700, 900});
    }

    QAccessibleInterface* interface() const { return QAccessible::queryAccessibleInterface(m_view.get()); }
    QAccessibleTextInterface* text() const { return interface()->textInterface(); }
    QString allText() const { return text()->text(0, text()->characterCount()); }
    bool comesToRead(const QString& wanted)
    {
        return QTest::qWaitFor([&] { return allText() == wanted; });
    }
};

TEST_F(AccessiblePDFViewTest, IsADocumentWithTheNameOfItsFile)
{
    showPages(3);
    ASSERT_TRUE(interface());
    EXPECT_EQ(interface()->role(), QAccessible::Document);
    EXPECT_EQ(interface()->text(QAccessible::Name), m_view->document()->documentURL().fileName());
    EXPECT_EQ(interface()->text(QAccessible::Description), QStringLiteral("Page 1 of 3"));
    m_view->goToPage(1);
    EXPECT_EQ(interface()->text(QAccessible::Description), QStringLiteral("Page 2 of 3"));
    const QAccessible::State state = interface()->state();
    EXPECT_TRUE(state.readOnly);
    EXPECT_TRUE(state.selectableText);
    EXPECT_TRUE(state.focusable);
    EXPECT_FALSE(state.editable);
}

TEST_F(AccessiblePDFViewTest, TellsThatAPageCannotBeShown)
{
    PDFWriter writer;
    writer.addPage("");
    writer.replace(writer.addPage(""), "(nothing)");
    show(writer.bytes());
    m_view->goToPage(1);
    EXPECT_TRUE(QTest::qWaitFor([&] {
        return interface()->text(QAccessible::Description) ==
               QStringLiteral("Page 2 of 2. This page cannot be shown.");
    }));
}

TEST_F(AccessiblePDFViewTest, HasTheTextOfTheCurrentPage)
{
    showPages(3);
    EXPECT_TRUE(comesToRead(textOfPage));
    EXPECT_EQ(text()->text(6, 11), QStringLiteral("world"));
    EXPECT_EQ(text()->text(-5, 5), QStringLiteral("Hello"));
    EXPECT_EQ(text()->text(19, 5000), QStringLiteral("line\n"));
    EXPECT_EQ(text()->text(5000, 6000), QString());
    m_view->goToPage(2);
    EXPECT_TRUE(comesToRead(QStringLiteral("Page 3\n")));
    m_view->setDocument({});
    EXPECT_EQ(text()->characterCount(), 0);
    EXPECT_EQ(interface()->text(QAccessible::Name), QStringLiteral("Document pages"));
}

TEST_F(AccessiblePDFViewTest, ReadsByWordAndByLine)
{
    showPages(1);
    ASSERT_TRUE(comesToRead(textOfPage));
    int start = 0;
    int end = 0;
    EXPECT_EQ(text()->textAtOffset(8, QAccessible::WordBoundary, &start, &end), QStringLiteral("world"));
    EXPECT_EQ(start, 6);
    EXPECT_EQ(end, 11);
    EXPECT_EQ(
        text()->textAtOffset(8, QAccessible::LineBoundary, &start, &end).trimmed(),
        QStringLiteral("Hello world"));
    EXPECT_EQ(
        text()->textAfterOffset(8, QAccessible::LineBoundary, &start, &end).trimmed(),
        QStringLiteral("Second line"));
    EXPECT_EQ(
        text()->textBeforeOffset(14, QAccessible::LineBoundary, &start, &end).trimmed(),
        QStringLiteral("Hello world"));
    EXPECT_EQ(text()->textAtOffset(4, QAccessible::CharBoundary, &start, &end), QStringLiteral("o"));
}

TEST_F(AccessiblePDFViewTest, TellsWhereCharactersAreOnTheScreen)
{
    for (const char* rotation : {"", "/Rotate 90", "/Rotate 180", "/Rotate 270"}) {
        showPages(1, rotation);
        m_view->setScaleFactor(0.8);
        ASSERT_TRUE(comesToRead(textOfPage));
        const QRectF inPage(72 + 30.67, 697, 8.66, 12);
        const QRectF inView = m_view->pageToView(0)->mapRect(inPage);
        const QPointF onScreen = m_view->viewport()->mapToGlobal(inView.center());
        const QRect letter = text()->characterRect(6);
        EXPECT_TRUE(letter.contains(onScreen.toPoint())) << rotation;
        EXPECT_LT(std::max(letter.width(), letter.height()), 16) << rotation;
        for (const int offset : {0, 4, 6, 10, 12, 22})
            EXPECT_EQ(text()->offsetAtPoint(text()->characterRect(offset).center()), offset) << rotation;
    }
    EXPECT_EQ(text()->offsetAtPoint(m_view->viewport()->mapToGlobal(QPoint(1, 1))), -1);
    EXPECT_TRUE(text()->characterRect(-1).isEmpty());
    EXPECT_TRUE(text()->characterRect(5000).isEmpty());
    EXPECT_GT(text()->characterRect(11).height(), 0) << "a line feed has a place, too";
}

TEST_F(AccessiblePDFViewTest, KnowsAndChangesTheSelection)
{
    showPages(2);
    ASSERT_TRUE(comesToRead(textOfPage));
    EXPECT_EQ(text()->selectionCount(), 0);
    m_view->setCurrentSelection(m_view->document()->selection({0, 6}, {0, 11}));
    int start = 0;
    int end = 0;
    EXPECT_EQ(text()->selectionCount(), 1);
    text()->selection(0, &start, &end);
    EXPECT_EQ(start, 6);
    EXPECT_EQ(end, 11);
    EXPECT_EQ(text()->cursorPosition(), 11);

    text()->setSelection(0, 12, 18);
    EXPECT_EQ(m_view->currentSelection()->string(), QStringLiteral("Second"));
    text()->removeSelection(0);
    EXPECT_EQ(m_view->currentSelection(), std::nullopt);
    text()->addSelection(-3, 5);
    EXPECT_EQ(m_view->currentSelection()->string(), QStringLiteral("Hello"));

    m_view->selectAll();
    text()->selection(0, &start, &end);
    EXPECT_EQ(start, 0);
    EXPECT_EQ(end, textOfPage.size()) << "what is selected on other pages is not this page's";
}

TEST_F(AccessiblePDFViewTest, MovesItsCursor)
{
    showPages(1);
    ASSERT_TRUE(comesToRead(textOfPage));
    EXPECT_EQ(text()->cursorPosition(), 0);
    text()->setCursorPosition(12);
    EXPECT_EQ(text()->cursorPosition(), 12);
    QTest::keyClick(m_view.get(), Qt::Key_Right, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_TRUE(QTest::qWaitFor([&] {
        return m_view->currentSelection() && m_view->currentSelection()->string() == QStringLiteral("Second");
    }));
}

TEST_F(AccessiblePDFViewTest, BringsTextIntoView)
{
    showPages(1);
    m_view->setScaleFactor(5.0);
    m_view->goToEnd();
    ASSERT_TRUE(comesToRead(textOfPage));
    text()->scrollToSubstring(6, 11);
    EXPECT_TRUE(QTest::qWaitFor([&] {
        const QRect letter = text()->characterRect(6);
        return QRect(m_view->viewport()->mapToGlobal(QPoint()), m_view->viewport()->size()).contains(letter);
    }));
}

} // namespace
} // namespace pdf
