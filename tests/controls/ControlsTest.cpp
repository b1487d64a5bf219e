// SPDX-License-Identifier: AGPL-3.0-or-later
#include "controls/BusyIndicator.h"
#include "controls/MenuButton.h"
#include "controls/ProminentButton.h"
#include "controls/SmallButton.h"
#include "controls/SymbolButton.h"
#include "controls/TextLabel.h"
#include "platform/Symbols.h"
#include "platform/Theme.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QHBoxLayout>
#include <QMenu>
#include <QSignalSpy>
#include <QTest>

namespace quillo {
namespace {

TEST(SymbolButtonTest, SaysItsNameToAScreenReaderAndInItsToolTip)
{
    const SymbolButton button(Symbol::plusMagnifyingglass, QStringLiteral("Zoom in"));
    EXPECT_EQ(button.accessibleName(), QStringLiteral("Zoom in"));
    EXPECT_EQ(button.toolTip(), QStringLiteral("Zoom in"));
}

TEST(SymbolButtonTest, IsPressedWithTheKeyboard)
{
    QWidget window;
    auto* row = new QHBoxLayout(&window);
    auto* first = new SymbolButton(Symbol::chevronLeft, QStringLiteral("Previous page"));
    auto* second = new SymbolButton(Symbol::chevronRight, QStringLiteral("Next page"));
    row->addWidget(first);
    row->addWidget(second);
    window.show();
    QApplication::setActiveWindow(&window);
    first->setFocus(Qt::TabFocusReason);
    QTest::keyClick(first, Qt::Key_Tab);
    ASSERT_TRUE(second->hasFocus());
    const QSignalSpy clicked(second, &SymbolButton::clicked);
    QTest::keyClick(second, Qt::Key_Space);
    EXPECT_EQ(clicked.count(), 1);
}

TEST(SymbolButtonTest, ShowsThatItHasTheFocus)
{
    SymbolButton button(Symbol::chevronLeft, QStringLiteral("Previous page"));
    button.show();
    QApplication::setActiveWindow(&button);
    button.setFocus(Qt::TabFocusReason);
    ASSERT_TRUE(button.hasFocus());
    const QColor accent = Theme::current().color(ThemeColor::accent);
    EXPECT_EQ(button.grab().toImage().pixelColor(1, SymbolButton::side / 2), accent);
}

TEST(SymbolButtonTest, IsPaleWhileItIsDisabled)
{
    SymbolButton button(Symbol::docFill, QStringLiteral("Document"));
    const auto darkest = [&] {
        const QImage picture = button.grab().toImage();
        int value = 255;
        for (int y = 0; y < picture.height(); ++y) {
            for (int x = 0; x < picture.width(); ++x)
                value = std::min(value, picture.pixelColor(x, y).lightness());
        }
        return value;
    };
    const int enabled = darkest();
    button.setEnabled(false);
    EXPECT_GT(darkest(), enabled + 60);
}

TEST(TextLabelTest, TakesNoTextForMarkup)
{
    const TextLabel label(QStringLiteral("<b>bold</b> & more"), TextStyle::body);
    EXPECT_EQ(label.textFormat(), Qt::PlainText);
    EXPECT_EQ(label.text(), QStringLiteral("<b>bold</b> & more"));
}

TEST(TextLabelTest, FollowsTheThemeAndKeepsItsOwnColour)
{
    TextLabel label(QStringLiteral("text"), TextStyle::caption, ThemeColor::secondaryText);
    label.show();
    EXPECT_EQ(label.palette().color(QPalette::WindowText), Theme::light().color(ThemeColor::secondaryText));
    const auto follows = [&](const Theme& theme) {
        Theme::setCurrent(theme);
        QApplication::setPalette(theme.palette());
        return QTest::qWaitFor([&] {
            return label.palette().color(QPalette::WindowText) == theme.color(ThemeColor::secondaryText);
        });
    };
    EXPECT_TRUE(follows(Theme::dark()));
    EXPECT_TRUE(follows(Theme::light()));
}

TEST(SmallButtonTest, HasRoomForItsText)
{
    SmallButton button(Symbol::arrowClockwise, QStringLiteral("Run again"), TextStyle::caption2);
    EXPECT_GT(
        button.sizeHint().width(), button.fontMetrics().horizontalAdvance(QStringLiteral("Run again")) + 10);
}

TEST(ProminentButtonTest, IsPressedWithTheMouse)
{
    ProminentButton button(QStringLiteral("Open PDF..."));
    button.show();
    const QSignalSpy clicked(&button, &ProminentButton::clicked);
    QTest::mouseClick(&button, Qt::LeftButton);
    EXPECT_EQ(clicked.count(), 1);
}

TEST(ProminentButtonTest, IsPressedWithReturnAndSpace)
{
    ProminentButton button(QStringLiteral("Open PDF..."));
    button.show();
    const QSignalSpy clicked(&button, &ProminentButton::clicked);
    QTest::keyClick(&button, Qt::Key_Return);
    EXPECT_EQ(clicked.count(), 1);
    QTest::keyClick(&button, Qt::Key_Space);
    EXPECT_EQ(clicked.count(), 2);
}

TEST(MenuButtonTest, OpensItsMenuBelowItself)
{
    auto* menu = new QMenu;
    const QAction* item = menu->addAction(QStringLiteral("Open PDF..."));
    const QSignalSpy chosen(item, &QAction::triggered);
    MenuButton button(QStringLiteral("File"), menu);
    button.move(100, 100);
    button.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&button));
    QTest::mousePress(&button, Qt::LeftButton);
    ASSERT_TRUE(menu->isVisible());
    EXPECT_TRUE(button.isDown());
    const QPoint place = menu->pos();
    QTest::keyClick(menu, Qt::Key_Down);
    QTest::keyClick(menu, Qt::Key_Return);
    EXPECT_EQ(chosen.count(), 1);
    EXPECT_EQ(place, button.mapToGlobal(QPoint(0, button.height())));
    EXPECT_FALSE(button.isDown());
}

TEST(BusyIndicatorTest, TurnsWhileItIsVisible)
{
    BusyIndicator indicator(32);
    indicator.show();
    const QImage before = indicator.grab().toImage();
    EXPECT_TRUE(QTest::qWaitFor([&] { return indicator.grab().toImage() != before; }));
}

} // namespace
} // namespace quillo
