// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "platform/Theme.h"

#include <QLabel>

namespace quillo {

/// Plain text in a style of the type scale and a colour of the theme, which it follows.
class TextLabel : public QLabel
{
    Q_OBJECT

public:
    explicit TextLabel(
        const QString& text, TextStyle style, ThemeColor color = ThemeColor::primaryText,
        QWidget* parent = nullptr);

    void setColor(ThemeColor color);
    /// Breaks lines where the text is wider than its room.
    void setWrapping(bool wrapping);

protected:
    void changeEvent(QEvent* event) override;

private:
    void applyColor();

    ThemeColor m_color;
};

} // namespace quillo
