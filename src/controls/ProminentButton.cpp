// SPDX-License-Identifier: AGPL-3.0-or-later
#include "controls/ProminentButton.h"

#include "controls/ControlPainting.h"

#include <QEvent>
#include <QKeyEvent>
#include <QPainter>

namespace quillo {
namespace {

constexpr int paddingAcross = 20;
constexpr int buttonHeight = 34;

} // namespace

ProminentButton::ProminentButton(const QString& title, QWidget* parent)
    : QAbstractButton(parent)
{
    setText(title);
    setAccessibleName(title);
    QFont font = Theme::font(TextStyle::body);
    font.setWeight(QFont::DemiBold);
    setFont(font);
    setAttribute(Qt::WA_Hover);
    setFocusPolicy(Qt::TabFocus);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

QSize ProminentButton::sizeHint() const
{
    return {fontMetrics().horizontalAdvance(text()) + 2 * paddingAcross, buttonHeight};
}

bool ProminentButton::event(QEvent* event)
{
    if (event->type() == QEvent::HoverEnter || event->type() == QEvent::HoverLeave)
        update();
    return QAbstractButton::event(event);
}

void ProminentButton::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
        click();
    else
        QAbstractButton::keyPressEvent(event);
}

void ProminentButton::paintEvent(QPaintEvent*)
{
    const Theme& theme = Theme::current();
    QColor background = theme.color(ThemeColor::accent);
    if (isDown())
        background = background.darker(118);
    else if (underMouse())
        background = background.darker(108);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(background);
    painter.drawRoundedRect(rect(), controlRadius, controlRadius);
    // The dark set's accent is too light for white letters.
    const QColor letters = theme.isDark() ? theme.color(ThemeColor::windowBackground) : QColor(Qt::white);
    if (hasFocus()) {
        painter.setPen(QPen(letters, 1.5));
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(QRectF(rect()).adjusted(3, 3, -3, -3), controlRadius - 2, controlRadius - 2);
    }
    painter.setPen(letters);
    painter.drawText(rect(), Qt::AlignCenter, text());
}

} // namespace quillo
