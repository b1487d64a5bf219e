// SPDX-License-Identifier: AGPL-3.0-or-later
#include "controls/Separator.h"

#include "platform/Theme.h"

#include <QPainter>

namespace quillo {

Separator::Separator(Qt::Orientation orientation, QWidget* parent)
    : QWidget(parent)
    , m_orientation(orientation)
{
    if (orientation == Qt::Horizontal)
        setFixedHeight(1);
    else
        setFixedWidth(1);
}

void Separator::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    const QColor color = Theme::current().color(ThemeColor::separator);
    const double hairline = 1.0 / devicePixelRatioF();
    const bool isHorizontal = m_orientation == Qt::Horizontal;
    painter.fillRect(
        QRectF(0, 0, isHorizontal ? width() : hairline, isHorizontal ? hairline : height()), color);
}

} // namespace quillo
