// SPDX-License-Identifier: AGPL-3.0-or-later
#include "platform/Theme.h"

#include <gtest/gtest.h>

#include <QGuiApplication>

#include <algorithm>
#include <cmath>

namespace quillo {
namespace {

/// As the Web Content Accessibility Guidelines define it.
double luminance(const QColor& color)
{
    const auto linear = [](double part) {
        return part <= 0.03928 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

double contrast(const QColor& a, const QColor& b)
{
    const auto [dark, light] = std::minmax({luminance(a), luminance(b)});
    return (light + 0.05) / (dark + 0.05);
}

class ThemeTest : public testing::TestWithParam<bool>
{
protected:
    static const Theme& theme() { return GetParam() ? Theme::dark() : Theme::light(); }
    static QColor color(ThemeColor role) { return theme().color(role); }
};

TEST_P(ThemeTest, KeepsTextsReadable)
{
    constexpr double least = 4.5;
    for (const auto back : {ThemeColor::windowBackground, ThemeColor::controlBackground}) {
        EXPECT_GE(contrast(color(ThemeColor::primaryText), color(back)), least);
        EXPECT_GE(contrast(color(ThemeColor::secondaryText), color(back)), least);
        EXPECT_GE(contrast(color(ThemeColor::red), color(back)), least);
    }
    EXPECT_GE(contrast(color(ThemeColor::accent), color(ThemeColor::controlBackground)), least);
}

TEST_P(ThemeTest, KeepsSymbolsVisible)
{
    constexpr double least = 3.0;
    for (const auto role :
         {ThemeColor::accent, ThemeColor::green, ThemeColor::orange, ThemeColor::red, ThemeColor::yellow})
        EXPECT_GE(contrast(color(role), color(ThemeColor::controlBackground)), least);
}

TEST_P(ThemeTest, LeavesThePageTheBrightestThingOnTheScreen)
{
    for (const auto role : {ThemeColor::windowBackground, ThemeColor::pageSurroundings})
        EXPECT_LT(luminance(color(role)), luminance(Qt::white));
}

TEST_P(ThemeTest, GivesTheDesktopsControlsItsColours)
{
    const QPalette palette = theme().palette();
    EXPECT_EQ(palette.color(QPalette::Window), color(ThemeColor::windowBackground));
    EXPECT_EQ(palette.color(QPalette::Base), color(ThemeColor::controlBackground));
    EXPECT_EQ(palette.color(QPalette::WindowText), color(ThemeColor::primaryText));
    EXPECT_EQ(palette.color(QPalette::Highlight), color(ThemeColor::accent));
    EXPECT_NE(
        palette.color(QPalette::Disabled, QPalette::Text), palette.color(QPalette::Active, QPalette::Text));
}

INSTANTIATE_TEST_SUITE_P(LightAndDark, ThemeTest, testing::Bool(), [](const auto& parameter) {
    return parameter.param ? "Dark" : "Light";
});

TEST(ThemeFontTest, KeepsTheTypeScale)
{
    EXPECT_EQ(Theme::font(TextStyle::largeTitle).pixelSize(), 26);
    EXPECT_EQ(Theme::font(TextStyle::title).pixelSize(), 22);
    EXPECT_EQ(Theme::font(TextStyle::headline).pixelSize(), 13);
    EXPECT_TRUE(Theme::font(TextStyle::headline).bold());
    EXPECT_EQ(Theme::font(TextStyle::body).pixelSize(), 13);
    EXPECT_EQ(Theme::font(TextStyle::subheadline).pixelSize(), 12);
    EXPECT_EQ(Theme::font(TextStyle::caption).pixelSize(), 11);
    EXPECT_EQ(Theme::font(TextStyle::caption2).pixelSize(), 10);
    EXPECT_EQ(Theme::font(TextStyle::body).family(), QGuiApplication::font().family());
}

class SystemAppearanceTest : public testing::Test
{
protected:
    ~SystemAppearanceTest() override
    {
        qunsetenv("QUILLO_APPEARANCE");
        QGuiApplication::setPalette(QPalette());
    }
};

TEST_F(SystemAppearanceTest, IsDarkWhereTheSystemsWindowsAre)
{
    QGuiApplication::setPalette(QPalette(Qt::black));
    EXPECT_TRUE(systemPrefersDark());
    QGuiApplication::setPalette(QPalette(Qt::lightGray));
    EXPECT_FALSE(systemPrefersDark());
}

TEST_F(SystemAppearanceTest, GoesByTheEnvironmentFirst)
{
    QGuiApplication::setPalette(QPalette(Qt::lightGray));
    qputenv("QUILLO_APPEARANCE", "dark");
    EXPECT_TRUE(systemPrefersDark());
    qputenv("QUILLO_APPEARANCE", "light");
    EXPECT_FALSE(systemPrefersDark());
}

} // namespace
} // namespace quillo
