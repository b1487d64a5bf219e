// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <QColor>
#include <QFont>
#include <QPalette>

#include <array>
#include <cstddef>

namespace quillo {

/// What a colour is used for.
enum class ThemeColor {
    windowBackground,
    controlBackground,
    pageSurroundings,
    primaryText,
    secondaryText,
    separator,
    accent,
    green,
    orange,
    red,
    yellow,
};

/// The sizes of text, as parts of the type scale.
enum class TextStyle { largeTitle, title, headline, body, subheadline, caption, caption2 };

/// The colours of all windows. There are a light and a dark set; which of them is current follows the system.
class Theme
{
public:
    static const Theme& light();
    static const Theme& dark();

    /// The set in use; the light one until another is made current. Main thread.
    static const Theme& current();
    static void setCurrent(const Theme& theme);

    bool isDark() const { return this == &dark(); }
    const QColor& color(ThemeColor role) const { return m_colors[static_cast<std::size_t>(role)]; }

    /// The colours as the desktop's own controls take them.
    QPalette palette() const;

    /// The system's own font in a size of the type scale.
    static QFont font(TextStyle style);
    /// For text that is an emoji. Any other font would ask every font of the system for one that has it.
    static QFont emojiFont(TextStyle style);

private:
    using Colors = std::array<QColor, 11>;
    explicit Theme(const Colors& colors);

    Colors m_colors;
};

/// The system's choice: whether its windows are dark. The environment variable QUILLO_APPEARANCE ("light" or
/// "dark") goes before it. To be asked before a palette of our own is set.
bool systemPrefersDark();

} // namespace quillo
