// SPDX-License-Identifier: AGPL-3.0-or-later
#include "controls/MenuKeys.h"

#include "controls/MenuButton.h"
#include "support/Printing.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QMenu>
#include <QSignalSpy>
#include <QTest>
#include <QVBoxLayout>
#include <QWheelEvent>

namespace quillo {
namespace {

/// A window with two menu buttons in its first row, one in its second, and a line to type in.
class MenuKeysTest : public testing::Test
{
protected:
    MenuKeysTest()
    {
        auto* column = new QVBoxLayout(&m_window);
        auto* first = new QHBoxLayout;
        auto* second = new QHBoxLayout;
        column->addLayout(first);
        column->addLayout(second);
        // Made in another order than the one in which they stand.
        m_document = add(second, QStringLiteral("&Document"));
        m_file = add(first, QStringLiteral("&File"));
        m_view = add(first, QStringLiteral("&View"));
        m_edit = new QLineEdit;
        column->addWidget(m_edit);
        new MenuKeys(&m_window);
        m_window.show();
        m_window.activateWindow();
    }

    void SetUp() override
    {
        ASSERT_TRUE(QTest::qWaitForWindowActive(&m_window));
        m_edit->setFocus();
    }

    static MenuButton* add(QLayout* row, const QString& title)
    {
        auto* menu = new QMenu;
        menu->addAction(QStringLiteral("hidden"))->setVisible(false);
        menu->addAction(QStringLiteral("first"));
        menu->addAction(QStringLiteral("second"));
        auto* button = new MenuButton(title, menu);
        row->addWidget(button);
        return button;
    }

    /// To whatever has the keyboard.
    static void press(Qt::Key key, Qt::KeyboardModifiers modifiers = {})
    {
        QWidget* popup = QApplication::activePopupWidget();
        QTest::keyClick(popup ? popup : QApplication::focusWidget(), key, modifiers);
    }

    static void pressAlt()
    {
        QTest::keyPress(QApplication::focusWidget(), Qt::Key_Alt, Qt::AltModifier);
        QTest::keyRelease(QApplication::focusWidget(), Qt::Key_Alt);
    }

    /// The titles of the menus that are open, one as a rule.
    QString openMenus() const
    {
        QStringList result;
        for (const MenuButton* button : {m_file, m_view, m_document}) {
            if (button->menu()->isVisible())
                result.append(button->text());
        }
        return result.join(u' ');
    }

    /// How many pixels the button has that differ from those it has without a mark.
    static qsizetype underlineOf(MenuButton* button)
    {
        const QImage with = button->grab().toImage();
        button->setUnderlined(false);
        const QImage without = button->grab().toImage();
        qsizetype count = 0;
        for (int y = 0; y < with.height(); ++y) {
            for (int x = 0; x < with.width(); ++x)
                count += with.pixel(x, y) != without.pixel(x, y) ? 1 : 0;
        }
        return count;
    }

    QWidget m_window;
    MenuButton* m_file;
    MenuButton* m_view;
    MenuButton* m_document;
    QLineEdit* m_edit;
};

TEST_F(MenuKeysTest, AltAndALetterOpensThatMenuWithItsFirstItemSelected)
{
    press(Qt::Key_V, Qt::AltModifier);
    EXPECT_EQ(openMenus(), QStringLiteral("View"));
    ASSERT_NE(m_view->menu()->activeAction(), nullptr);
    EXPECT_EQ(m_view->menu()->activeAction()->text(), QStringLiteral("first"));
    press(Qt::Key_Escape);
    EXPECT_EQ(openMenus(), QString());
    EXPECT_TRUE(m_edit->hasFocus());
    press(Qt::Key_D, Qt::AltModifier);
    EXPECT_EQ(openMenus(), QStringLiteral("Document"));
}

TEST_F(MenuKeysTest, AltAloneGivesTheButtonsTheKeyboardAndTakesItBack)
{
    pressAlt();
    EXPECT_TRUE(m_file->hasFocus());
    EXPECT_EQ(openMenus(), QString());
    pressAlt();
    EXPECT_TRUE(m_edit->hasFocus());
    pressAlt();
    press(Qt::Key_Escape);
    EXPECT_TRUE(m_edit->hasFocus());
}

TEST_F(MenuKeysTest, AltWithAnotherKeyIsNotAltAlone)
{
    QTest::keyPress(m_edit, Qt::Key_Alt, Qt::AltModifier);
    QTest::keyClick(m_edit, Qt::Key_Left, Qt::AltModifier);
    QTest::keyRelease(m_edit, Qt::Key_Alt);
    EXPECT_TRUE(m_edit->hasFocus());

    QTest::keyPress(m_edit, Qt::Key_Alt, Qt::AltModifier);
    QTest::mouseClick(m_edit, Qt::LeftButton, Qt::AltModifier);
    QTest::keyRelease(m_edit, Qt::Key_Alt);
    EXPECT_TRUE(m_edit->hasFocus());

    QTest::keyPress(m_edit, Qt::Key_Alt, Qt::AltModifier);
    QWheelEvent wheel(
        {5, 5}, m_edit->mapToGlobal(QPointF(5, 5)), {}, {0, 120}, {}, Qt::AltModifier, {}, false);
    QApplication::sendEvent(m_edit, &wheel);
    QTest::keyRelease(m_edit, Qt::Key_Alt);
    EXPECT_TRUE(m_edit->hasFocus());
}

TEST_F(MenuKeysTest, F10GivesTheButtonsTheKeyboardAndArrowsWalkThem)
{
    press(Qt::Key_F10);
    EXPECT_TRUE(m_file->hasFocus());
    press(Qt::Key_Right);
    EXPECT_TRUE(m_view->hasFocus());
    press(Qt::Key_Right);
    EXPECT_TRUE(m_document->hasFocus());
    press(Qt::Key_Right);
    EXPECT_TRUE(m_file->hasFocus()) << "after the last comes the first";
    press(Qt::Key_Left);
    EXPECT_TRUE(m_document->hasFocus());
    press(Qt::Key_Down);
    EXPECT_EQ(openMenus(), QStringLiteral("Document"));
    EXPECT_EQ(m_document->menu()->activeAction()->text(), QStringLiteral("first"));
}

TEST_F(MenuKeysTest, ArrowsGoFromOneOpenMenuToTheNext)
{
    press(Qt::Key_F, Qt::AltModifier);
    press(Qt::Key_Right);
    EXPECT_EQ(openMenus(), QStringLiteral("View"));
    EXPECT_FALSE(m_file->isDown());
    press(Qt::Key_Right);
    EXPECT_EQ(openMenus(), QStringLiteral("Document"));
    press(Qt::Key_Left);
    press(Qt::Key_Left);
    press(Qt::Key_Left);
    EXPECT_EQ(openMenus(), QStringLiteral("Document"));
    m_view->hide();
    press(Qt::Key_Left);
    EXPECT_EQ(openMenus(), QStringLiteral("File")) << "a button that cannot be seen is passed by";
}

TEST_F(MenuKeysTest, ArrowsGoTheWayThatTheLanguageReads)
{
    m_window.setLayoutDirection(Qt::RightToLeft);
    QCoreApplication::processEvents();
    press(Qt::Key_F, Qt::AltModifier);
    press(Qt::Key_Left);
    EXPECT_EQ(openMenus(), QStringLiteral("View"));
    press(Qt::Key_Right);
    EXPECT_EQ(openMenus(), QStringLiteral("File"));
}

TEST_F(MenuKeysTest, RightOpensAMenuWithinTheMenu)
{
    QMenu* inner = m_file->menu()->addMenu(QStringLiteral("inner"));
    inner->addAction(QStringLiteral("deep"));
    press(Qt::Key_F, Qt::AltModifier);
    m_file->menu()->setActiveAction(inner->menuAction());
    press(Qt::Key_Right);
    EXPECT_TRUE(inner->isVisible());
    EXPECT_EQ(openMenus(), QStringLiteral("File"));
}

TEST_F(MenuKeysTest, TheKeyboardReturnsAfterAnItemWasChosen)
{
    const QSignalSpy chosen(m_view->menu(), &QMenu::triggered);
    pressAlt();
    press(Qt::Key_Right);
    press(Qt::Key_Down);
    press(Qt::Key_Return);
    EXPECT_EQ(chosen.count(), 1);
    EXPECT_TRUE(m_edit->hasFocus());
}

TEST_F(MenuKeysTest, LettersAreUnderlinedWhileAltIsDown)
{
    EXPECT_EQ(underlineOf(m_file), 0);
    QTest::keyPress(m_edit, Qt::Key_Alt, Qt::AltModifier);
    EXPECT_GT(underlineOf(m_file), 3);
    QTest::keyRelease(m_edit, Qt::Key_Alt);
    EXPECT_EQ(underlineOf(m_view), 0);
    EXPECT_EQ(m_file->accessibleName(), QStringLiteral("File"));
}

TEST_F(MenuKeysTest, AnOpenMenuFollowsThePointerToAnotherButton)
{
    QTest::mouseClick(m_file, Qt::LeftButton);
    ASSERT_EQ(openMenus(), QStringLiteral("File"));
    QTest::mouseMove(m_file->menu(), m_file->menu()->mapFromGlobal(m_view->mapToGlobal(QPoint(5, 5))));
    EXPECT_EQ(openMenus(), QStringLiteral("View"));
}

} // namespace
} // namespace quillo
