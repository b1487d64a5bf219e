// SPDX-License-Identifier: AGPL-3.0-or-later
#include "controls/ControlPainting.h"

#include <QAbstractButton>
#include <QPainter>

namespace quillo {

void paintBorderlessButton(QPainter& painter, const QAbstractButton& button)
{
    painter.setRenderHint(QPainter::Antialiasing);
    if (button.isEnabled() && (button.isDown() || button.underMouse())) {
        QColor wash = Theme::current().color(ThemeColor::primaryText);
        wash.setAlphaF(button.isDown() ? 0.14F : 0.07F);
        painter.setPen(Qt::NoPen);
        painter.setBrush(wash);
        painter.drawRoundedRect(button.rect(), controlRadius, controlRadius);
    }
    if (button.hasFocus())
        paintFocusFrame(painter, button.rect(), controlRadius);
}

void paintFocusFrame(QPainter& painter, const QRectF& rect, double radius)
{
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(Theme::current().color(ThemeColor::accent), 2.0));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(rect.adjusted(1, 1, -1, -1), radius - 1, radius - 1);
}

} // namespace quillo
