// SPDX-License-Identifier: AGPL-3.0-or-later
#include "platform/Theme.h"

#include <QGuiApplication>

namespace quillo {
namespace {

struct TextSize
{
    int pixels;
    QFont::Weight weight;
};

// In the order of TextStyle; pixels at 96 dpi.
constexpr std::array<TextSize, 7> textSizes{{
    {26, QFont::Bold},
    {22, QFont::DemiBold},
    {13, QFont::Bold},
    {13, QFont::Normal},
    {12, QFont::Normal},
    {11, QFont::Normal},
    {10, QFont::Normal},
}};

const Theme* currentTheme = nullptr;

QColor mixed(const QColor& a, const QColor& b, float partOfB)
{
    return QColor::fromRgbF(
        a.redF() + (b.redF() - a.redF()) * partOfB, a.greenF() + (b.greenF() - a.greenF()) * partOfB,
        a.blueF() + (b.blueF() - a.blueF()) * partOfB);
}

} // namespace

Theme::Theme(const Colors& colors)
    : m_colors(colors)
{}

const Theme& Theme::light()
{
    static const Theme theme(Colors{
        QColor(0xF5F5F7), QColor(0xFFFFFF), QColor(0xE4E4E8), QColor(0x1D1D1F), QColor(0x6E6E73),
        QColor(0xD7D7DC), QColor(0x0A6CFF), QColor(0x1F9D4C), QColor(0xC76A00), QColor(0xD4302B),
        QColor(0xB58900)});
    return theme;
}

const Theme& Theme::dark()
{
    static const Theme theme(Colors{
        QColor(0x1E1E20), QColor(0x2C2C2E), QColor(0x161618), QColor(0xF2F2F4), QColor(0x9A9AA0),
        QColor(0x3A3A3D), QColor(0x4C97FF), QColor(0x3CC46F), QColor(0xFF9F2E), QColor(0xFF5F57),
        QColor(0xF2C744)});
    return theme;
}

const Theme& Theme::current()
{
    return currentTheme ? *currentTheme : light();
}

void Theme::setCurrent(const Theme& theme)
{
    currentTheme = &theme;
}

QPalette Theme::palette() const
{
    const QColor window = color(ThemeColor::windowBackground);
    const QColor control = color(ThemeColor::controlBackground);
    const QColor text = color(ThemeColor::primaryText);
    const QColor secondary = color(ThemeColor::secondaryText);
    const QColor separator = color(ThemeColor::separator);
    const QColor accent = color(ThemeColor::accent);

    QPalette palette(control, window);
    palette.setColor(QPalette::Window, window);
    palette.setColor(QPalette::Base, control);
    palette.setColor(QPalette::AlternateBase, mixed(control, window, 0.5F));
    palette.setColor(QPalette::Button, control);
    palette.setColor(QPalette::ToolTipBase, control);
    for (const auto role :
         {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText})
        palette.setColor(role, text);
    palette.setColor(QPalette::BrightText, Qt::white);
    palette.setColor(QPalette::PlaceholderText, secondary);
    palette.setColor(QPalette::Light, mixed(control, Qt::white, isDark() ? 0.1F : 1.0F));
    palette.setColor(QPalette::Midlight, mixed(control, separator, 0.5F));
    palette.setColor(QPalette::Mid, separator);
    palette.setColor(QPalette::Dark, mixed(separator, text, 0.3F));
    palette.setColor(QPalette::Shadow, mixed(separator, Qt::black, 0.6F));
    palette.setColor(QPalette::Highlight, accent);
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::Link, accent);
    palette.setColor(QPalette::LinkVisited, accent);
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, mixed(secondary, window, 0.4F));
    return palette;
}

QFont Theme::font(TextStyle style)
{
    const TextSize& size = textSizes[static_cast<std::size_t>(style)];
    QFont font = QGuiApplication::font();
    font.setPixelSize(size.pixels);
    font.setWeight(size.weight);
    return font;
}

QFont Theme::emojiFont(TextStyle style)
{
    QFont emojiFont = font(style);
    QStringList families = emojiFont.families();
    families.prepend(QStringLiteral("Noto Color Emoji"));
    emojiFont.setFamilies(families);
    return emojiFont;
}

bool systemPrefersDark()
{
    const QByteArray wish = qgetenv("QUILLO_APPEARANCE");
    if (!wish.isEmpty())
        return wish == "dark";
    return QGuiApplication::palette().color(QPalette::Window).lightness() < 128;
}

} // namespace quillo
