// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "platform/Theme.h"

class QAbstractButton;
class QPainter;
class QRectF;

namespace quillo {

/// Radius of a control's corners.
constexpr double controlRadius = 6.0;
/// Radius of a card's corners.
constexpr double cardRadius = 8.0;

/// The wash of a button without a border under the pointer or pressed, and the frame of the focus.
void paintBorderlessButton(QPainter& painter, const QAbstractButton& button);

/// The frame that shows which control has the focus, just inside the rectangle.
void paintFocusFrame(QPainter& painter, const QRectF& rect, double radius);

} // namespace quillo
