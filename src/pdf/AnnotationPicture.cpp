// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/AnnotationPicture.h"

#include <QBuffer>
#include <QGuiApplication>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace pdf {
namespace {

constexpr int pointsPerInch = 72;

} // namespace

DrawnPage drawPicture(const QSizeF& size, const std::function<void(QPainter&)>& draw)
{
    if (!qobject_cast<QGuiApplication*>(QCoreApplication::instance()))
        return {};
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    // Qt makes pages of whole points.
    const QSizeF pageSize(std::max(1.0, std::ceil(size.width())), std::max(1.0, std::ceil(size.height())));
    PageRecorder page(&buffer, pageSize, pointsPerInch);
    QPainter painter;
    if (!painter.begin(&page))
        return {};
    painter.setRenderHint(QPainter::LosslessImageRendering);
    painter.translate(0, pageSize.height() - size.height());
    draw(painter);
    painter.end();
    return {buffer.data(), page.takeText()};
}

} // namespace pdf
