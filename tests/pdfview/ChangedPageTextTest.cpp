// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdfview/FormViewFixture.h"

#include "pdf/TextLayer.h"
#include "pdfview/PageReader.h"

#include <gtest/gtest.h>

#include <QAccessible>

namespace pdf {
namespace {

/// What a view knows of a page's text while form fields of the page change.
class ChangedPageTextTest : public FormViewFixture
{
protected:
    void SetUp() override
    {
        m_file.add("/FT/Tx/T(name)/V(Jane)/DA(/Helv 10 Tf 0 g)/Rect[50 300 250 320]");
        m_file.add("/FT/Tx/T(city)/V(Bern)/DA(/Helv 10 Tf 0 g)/Rect[50 200 250 220]");
        showForm();
        ASSERT_TRUE(isRead(QStringLiteral("Jane\nBern\n")));
    }

    bool isRead(const QString& text)
    {
        return QTest::qWaitFor([&] {
            const TextLayer* known = m_view->pageReader().text(0);
            return known && known->string() == text;
        });
    }

    std::vector<PDFSelection> find(const char* text)
    {
        return m_view->document()->findString(QString::fromLatin1(text));
    }

    void fill(const char* name, const QString& value)
    {
        click(name);
        QWidget* edit = QApplication::focusWidget();
        QTest::keyClick(edit, Qt::Key_A, Qt::ControlModifier);
        QTest::keyClick(edit, Qt::Key_Delete);
        QTest::keyClicks(edit, value);
        QTest::keyClick(edit, Qt::Key_Return);
    }
};

TEST_F(ChangedPageTextTest, IsReadAnewAfterAFieldWasFilled)
{
    fill("name", QStringLiteral("Josephine"));
    EXPECT_TRUE(isRead(QStringLiteral("Josephine\nBern\n")));
    QAccessibleInterface* interface = QAccessible::queryAccessibleInterface(m_view.get());
    ASSERT_NE(interface, nullptr);
    ASSERT_NE(interface->textInterface(), nullptr);
    EXPECT_EQ(interface->textInterface()->text(0, 9), QStringLiteral("Josephine"));
}

TEST_F(ChangedPageTextTest, TheSelectionStaysOnItsText)
{
    m_view->setCurrentSelection(find("Bern").front());
    fill("name", QStringLiteral("Josephine"));
    ASSERT_TRUE(isRead(QStringLiteral("Josephine\nBern\n")));
    ASSERT_TRUE(m_view->currentSelection());
    EXPECT_EQ(m_view->currentSelection()->string(), QStringLiteral("Bern"));
    EXPECT_EQ(m_view->currentSelection()->parts().front().range, (TextRange{10, 4}));
}

TEST_F(ChangedPageTextTest, NothingIsSelectedOfATextThatIsGone)
{
    m_view->setCurrentSelection(find("Jane").front());
    fill("name", QString());
    ASSERT_TRUE(isRead(QStringLiteral("Bern\n")));
    EXPECT_FALSE(m_view->currentSelection());
}

TEST_F(ChangedPageTextTest, ASelectionOfAllHasTheNewText)
{
    m_view->selectAll();
    fill("name", QStringLiteral("Josephine"));
    ASSERT_TRUE(isRead(QStringLiteral("Josephine\nBern\n")));
    ASSERT_TRUE(QTest::qWaitFor([this] { return m_view->currentSelection().has_value(); }));
    EXPECT_EQ(m_view->currentSelection()->string(), QStringLiteral("Josephine\nBern\n"));
}

TEST_F(ChangedPageTextTest, MarksStayOnTheirTextAndLeaveWhatIsGone)
{
    std::vector<PDFSelection> both = find("Jane");
    both.push_back(find("Bern").front());
    m_view->setHighlightedSelections(both);
    fill("name", QStringLiteral("Ed"));
    ASSERT_TRUE(isRead(QStringLiteral("Ed\nBern\n")));
    EXPECT_EQ(m_view->highlightedSelections(), (std::vector<TextMatch>{{0, 3, 4}}));
}

} // namespace
} // namespace pdf
