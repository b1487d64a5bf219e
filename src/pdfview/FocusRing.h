// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <QColor>
#include <QRectF>

class QPainter;

namespace pdf {

/// Paints a ring around what has the keyboard, on its outside.
void paintFocusRing(QPainter& painter, const QRectF& rect, const QColor& color);

} // namespace pdf
