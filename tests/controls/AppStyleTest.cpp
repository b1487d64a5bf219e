// SPDX-License-Identifier: AGPL-3.0-or-later
#include "controls/AppStyle.h"

#include "platform/Theme.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QTest>
#include <QToolTip>

namespace quillo {
namespace {

/// Sets the style of the program while it lives.
class AppStyleTest : public testing::Test
{
protected:
    AppStyleTest()
        : m_before(QApplication::style()->name())
    {
        QApplication::setStyle(new AppStyle);
        QApplication::setPalette(Theme::current().palette());
    }
    ~AppStyleTest() override { QApplication::setStyle(m_before); }

private:
    const QString m_before;
};

TEST_F(AppStyleTest, IsFusionOtherwise)
{
    const auto* style = qobject_cast<const QProxyStyle*>(QApplication::style());
    ASSERT_TRUE(style);
    EXPECT_EQ(style->baseStyle()->name(), QStringLiteral("fusion"));
}

TEST_F(AppStyleTest, GivesHintsAHairlineForAFrame)
{
    QToolTip::showText({10, 10}, QStringLiteral("Page 3"));
    QWidget* hint = nullptr;
    ASSERT_TRUE(QTest::qWaitFor([&] {
        for (QWidget* widget : QApplication::topLevelWidgets()) {
            if (widget->isVisible() && widget->inherits("QTipLabel"))
                hint = widget;
        }
        return hint != nullptr;
    }));
    const QImage picture = hint->grab().toImage();
    EXPECT_EQ(picture.pixelColor(0, 0), Theme::current().color(ThemeColor::separator));
    EXPECT_EQ(picture.pixelColor(1, 1), hint->palette().color(QPalette::ToolTipBase));
    EXPECT_GE(hint->height(), hint->fontMetrics().height() + 12);
}

} // namespace
} // namespace quillo
