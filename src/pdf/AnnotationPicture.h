// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "pdf/DrawnPage.h"

#include <QSizeF>

#include <functional>

class QPainter;

namespace pdf {

/// A page that shows what is drawn in a rectangle of the given size in points; the rectangle's lower left
/// corner is that of the page. Images keep their transparency and every pixel. Any thread; without a file
/// when nothing can be drawn, for want of a QGuiApplication.
DrawnPage drawPicture(const QSizeF& size, const std::function<void(QPainter&)>& draw);

} // namespace pdf
