// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdfview/TextMarker.h"

#include "pdf/TextLayer.h"
#include "pdfview/PDFView.h"
#include "pdfview/PageReader.h"

#include <QPainter>

#include <cmath>

namespace pdf {

TextMarker::TextMarker(const PDFView& view, const PageReader& reader)
    : m_view(view)
    , m_reader(reader)
{}

QPainterPath TextMarker::outline(int page, TextRange range) const
{
    QPainterPath path;
    const TextLayer* text = m_reader.text(page);
    const auto toView = m_view.pageToView(page);
    if (!text || !toView)
        return path;
    // Where lines overlap the marker must not be seen twice.
    path.setFillRule(Qt::WindingFill);
    for (const QPolygonF& part : text->outlines(text->clipped(range))) {
        path.addPolygon(toView->map(part));
        path.closeSubpath();
    }
    return path;
}

QColor TextMarker::tinted(const QColor& color, double strength)
{
    const auto mix = [strength](int part) {
        return 255 - static_cast<int>(std::lround(strength * (255 - part)));
    };
    return {mix(color.red()), mix(color.green()), mix(color.blue())};
}

void TextMarker::fill(QPainter& painter, const QPainterPath& outline, const QColor& color)
{
    if (outline.isEmpty())
        return;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setCompositionMode(QPainter::CompositionMode_Multiply);
    painter.fillPath(outline, color);
    painter.restore();
}

} // namespace pdf
