// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdfview/FocusRing.h"

#include <QPainter>

namespace pdf {
namespace {

// View points.
constexpr double ringWidth = 2.0;

} // namespace

void paintFocusRing(QPainter& painter, const QRectF& rect, const QColor& color)
{
    painter.save();
    painter.setPen(QPen(color, ringWidth));
    painter.setBrush(Qt::NoBrush);
    painter.setRenderHint(QPainter::Antialiasing);
    const double out = ringWidth / 2.0;
    painter.drawRoundedRect(rect.adjusted(-out, -out, out, out), 2.0, 2.0);
    painter.restore();
}

} // namespace pdf
