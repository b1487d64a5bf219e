// SPDX-License-Identifier: AGPL-3.0-or-later
#include "controls/TextLabel.h"

#include <QEvent>

namespace quillo {

TextLabel::TextLabel(const QString& text, TextStyle style, ThemeColor color, QWidget* parent)
    : QLabel(parent)
    , m_color(color)
{
    // Texts from documents must not be taken for markup.
    setTextFormat(Qt::PlainText);
    setText(text);
    // On a button a label would otherwise take the button's role.
    setForegroundRole(QPalette::WindowText);
    setFont(Theme::font(style));
    applyColor();
}

void TextLabel::setColor(ThemeColor color)
{
    m_color = color;
    applyColor();
}

void TextLabel::setWrapping(bool wrapping)
{
    setWordWrap(wrapping);
    setMinimumWidth(1);
}

void TextLabel::changeEvent(QEvent* event)
{
    QLabel::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        applyColor();
}

void TextLabel::applyColor()
{
    const QColor color = Theme::current().color(m_color);
    if (palette().color(QPalette::WindowText) == color)
        return;
    // Nothing but this one colour is the label's own; all others keep following the window.
    QPalette own;
    own.setColor(QPalette::WindowText, color);
    setPalette(own);
}

} // namespace quillo
