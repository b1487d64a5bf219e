// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <QFlags>
#include <QPainterPath>
#include <QRectF>

namespace quillo {

/// The corners of a rectangle, one bit each.
enum class RectCorner : int {
    topLeft = 1 << 0,
    topRight = 1 << 1,
    bottomLeft = 1 << 2,
    bottomRight = 1 << 3,
};
Q_DECLARE_FLAGS(RectCorners, RectCorner)
Q_DECLARE_OPERATORS_FOR_FLAGS(RectCorners)

/// A rectangle of which only some corners are rounded.
struct RoundedCorner
{
    double radius = 0.0;
    RectCorners corners;

    QPainterPath path(const QRectF& rect) const;
};

} // namespace quillo
