// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QSizeF>

#include <functional>

class QPainter;

namespace pdf {

/// A PDF file of one page that shows what is drawn in a rectangle of the given size in points; the
/// rectangle's lower left corner is that of the page. Fonts are embedded as far as they are used, images keep
/// their transparency and every pixel. Any thread; empty when nothing can be drawn, for want of a
/// QGuiApplication.
QByteArray drawPicture(const QSizeF& size, const std::function<void(QPainter&)>& draw);

} // namespace pdf
