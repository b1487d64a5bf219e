// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdfview/FormViewFixture.h"

#include <gtest/gtest.h>

#include <QListWidget>
#include <QScrollBar>
#include <QSignalSpy>

#include <utility>

namespace pdf {
namespace {

/// A form with a list box that is 100 points high and has a border.
class ListFieldEditorTest : public FormViewFixture
{
protected:
    void showList(int options, const QByteArray& entries = {})
    {
        QByteArray texts;
        for (int i = 0; i < options; ++i)
            texts += "(Option " + QByteArray::number(i) + ")";
        m_file.add(
            "/FT/Ch/T(list)/Opt[" + texts +
            "]/Rect[40.3 200.6 160 300.6]/DA(/Helv 12 Tf 0 g)/MK<</BC[0 0 0]>>" + entries);
        showForm({700, 900});
    }

    /// Shows a list of five options whose appearance another program made, with wide rows; Option 1 is
    /// selected.
    void showWideList()
    {
        QByteArray content = "1 1 117.7 98 re W n 0.6 0.756 0.855 rg 0 " +
                             QByteArray::number(100 - wideTop - 2 * wideHeight) + " 119.7 " +
                             QByteArray::number(wideHeight) + " re f BT 0 g /Helv 12 Tf " +
                             QByteArray::number(wideHeight) + " TL 6 84 Td";
        for (int i = 0; i < 5; ++i)
            content += "(Option " + QByteArray::number(i) + ") Tj T* ";
        const int font = m_file.writer().add("<</Type/Font/Subtype/Type1/BaseFont/Helvetica>>");
        const int appearance = m_file.writer().addStream(
            content + "ET", "/Type/XObject/Subtype/Form/BBox[0 0 119.7 100]/Resources<</Font<</Helv " +
                                QByteArray::number(font) + " 0 R>>>>");
        m_rowHeight = wideHeight;
        showList(5, "/V(Option 1)/AP<</N " + QByteArray::number(appearance) + " 0 R>>");
    }

    /// Selects an option and waits until the page shows it.
    void select(int option)
    {
        ASSERT_TRUE(m_view->document()->setFormValue(field("list").widget, std::vector<int>{option}));
        QSignalSpy refreshed(m_view.get(), &PDFView::annotationsRefreshed);
        m_view->refreshAnnotations(0);
        ASSERT_TRUE(!refreshed.isEmpty() || refreshed.wait());
        // Until then the small picture of the page may stand in for it.
        ASSERT_TRUE(QTest::qWaitFor([&] { return m_view->isSharp(); }));
    }

    void zoom(double scale)
    {
        m_view->setScaleFactor(scale);
        std::pair<int, int> before;
        // Until the tiles of this scale are there, those of another one stand in for them.
        ASSERT_TRUE(QTest::qWaitFor([&] {
            const auto now = selectedRow();
            const double height = m_rowHeight * scale;
            return std::abs(now.second - now.first - height) <= 1.5 && std::exchange(before, now) == now;
        }));
    }

    /// From where to where the colour of a selected option is on the screen, in the middle of the list.
    std::pair<int, int> selectedRow()
    {
        const QImage picture = m_view->viewport()->grab().toImage();
        const QRect place = rectOf(field("list")).toAlignedRect();
        std::pair<int, int> row;
        for (int y = place.top() + 4; y < place.bottom() - 3; ++y) {
            const QColor color = picture.pixelColor(place.center().x() + place.width() / 4, y);
            if (color.blue() - color.red() < 45)
                continue;
            if (row.second == 0)
                row.first = y;
            row.second = y + 1;
        }
        return row;
    }

    /// Opens the list with a click on the selected row.
    QListWidget* open()
    {
        const auto row = selectedRow();
        const int x = placeOf(field("list")).x();
        QTest::mouseClick(m_view->viewport(), Qt::LeftButton, {}, {x, (row.first + row.second) / 2});
        return editor<QListWidget>();
    }

    static constexpr double wideTop = 3.0;
    static constexpr double wideHeight = 18.0;
    double m_rowHeight = 12 * 1.156;
};

TEST_F(ListFieldEditorTest, RowsLieWhereThePageShowsThem)
{
    showList(7);
    for (const double scale : {1.0, 1.37, 2.0}) {
        for (const int option : {1, 5, 3}) {
            select(option);
            zoom(scale);
            const auto shown = selectedRow();
            QListWidget* list = open();
            ASSERT_NE(list, nullptr);
            const auto edited = selectedRow();
            EXPECT_NEAR(edited.first, shown.first, 1) << option << " at " << scale;
            EXPECT_NEAR(edited.second, shown.second, 1) << option << " at " << scale;
            EXPECT_EQ(list->currentRow(), option);
            QTest::keyClick(list, Qt::Key_Escape);
        }
    }
}

TEST_F(ListFieldEditorTest, RowsStayWhereAnotherProgramHasPutThem)
{
    showWideList();
    int option = 1;
    for (const int next : {4, 0, 3, 2}) {
        for (const double scale : {1.0, 1.37, 2.0}) {
            zoom(scale);
            const double top = rectOf(field("list")).top() + (wideTop + option * wideHeight) * scale;
            const auto shown = selectedRow();
            EXPECT_NEAR(shown.first, top, 1) << option << " at " << scale;
            EXPECT_NEAR(shown.second, top + wideHeight * scale, 1) << option << " at " << scale;
            QListWidget* list = open();
            ASSERT_NE(list, nullptr);
            EXPECT_FALSE(list->verticalScrollBar()->isVisible());
            const auto edited = selectedRow();
            EXPECT_NEAR(edited.first, shown.first, 1) << option << " at " << scale;
            EXPECT_NEAR(edited.second, shown.second, 1) << option << " at " << scale;
            QTest::keyClick(list, Qt::Key_Escape);
        }
        select(next);
        option = next;
    }
}

TEST_F(ListFieldEditorTest, RowsThatFitNeedNoScrollBar)
{
    showList(7);
    select(2);
    for (const double scale : {1.0, 1.37, 2.0}) {
        zoom(scale);
        QListWidget* list = open();
        ASSERT_NE(list, nullptr);
        EXPECT_FALSE(list->verticalScrollBar()->isVisible()) << scale;
        EXPECT_EQ(list->verticalScrollBar()->maximum(), 0) << scale;
        for (const int row : {0, 6}) {
            const QRect place = list->visualItemRect(list->item(row));
            EXPECT_TRUE(list->viewport()->rect().contains(place)) << row << " at " << scale;
        }
        QTest::keyClick(list, Qt::Key_Escape);
    }
}

TEST_F(ListFieldEditorTest, TheScrollBarOfALongListStandsBesideTheRows)
{
    showList(30);
    select(20);
    const auto shown = selectedRow();
    QListWidget* list = open();
    ASSERT_NE(list, nullptr);
    QScrollBar* bar = list->verticalScrollBar();
    ASSERT_TRUE(bar->isVisible());
    const QRect barPlace(bar->mapTo(m_view->viewport(), QPoint(0, 0)), bar->size());
    EXPECT_GE(barPlace.left(), rectOf(field("list")).right() - 1);
    EXPECT_NEAR(selectedRow().first, shown.first, 1);
    EXPECT_NEAR(selectedRow().second, shown.second, 1);
    QTest::keyClick(list, Qt::Key_End);
    EXPECT_TRUE(list->viewport()->rect().contains(list->visualItemRect(list->item(29))));
}

TEST_F(ListFieldEditorTest, BeginsWhereTheDocumentWantsItTo)
{
    showList(30, "/TI 12");
    select(14);
    const auto shown = selectedRow();
    ASSERT_NE(open(), nullptr);
    EXPECT_NEAR(selectedRow().first, shown.first, 1);
    EXPECT_NEAR(selectedRow().second, shown.second, 1);
}

} // namespace
} // namespace pdf
