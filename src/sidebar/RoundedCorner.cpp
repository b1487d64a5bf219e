// SPDX-License-Identifier: AGPL-3.0-or-later
#include "sidebar/RoundedCorner.h"

#include <algorithm>

namespace quillo {

QPainterPath RoundedCorner::path(const QRectF& rect) const
{
    const double most = std::min(rect.width(), rect.height()) / 2;
    const double bounded = std::clamp(radius, 0.0, most);
    const auto at = [&](RectCorner corner) { return corners.testFlag(corner) ? bounded : 0.0; };
    const double topLeft = at(RectCorner::topLeft);
    const double topRight = at(RectCorner::topRight);
    const double bottomLeft = at(RectCorner::bottomLeft);
    const double bottomRight = at(RectCorner::bottomRight);

    const auto box = [](double x, double y, double side) { return QRectF(x, y, 2 * side, 2 * side); };
    QPainterPath path(QPointF(rect.left() + topLeft, rect.top()));
    path.lineTo(rect.right() - topRight, rect.top());
    path.arcTo(box(rect.right() - 2 * topRight, rect.top(), topRight), 90, -90);
    path.lineTo(rect.right(), rect.bottom() - bottomRight);
    path.arcTo(box(rect.right() - 2 * bottomRight, rect.bottom() - 2 * bottomRight, bottomRight), 0, -90);
    path.lineTo(rect.left() + bottomLeft, rect.bottom());
    path.arcTo(box(rect.left(), rect.bottom() - 2 * bottomLeft, bottomLeft), 270, -90);
    path.lineTo(rect.left(), rect.top() + topLeft);
    path.arcTo(box(rect.left(), rect.top(), topLeft), 180, -90);
    path.closeSubpath();
    return path;
}

} // namespace quillo
