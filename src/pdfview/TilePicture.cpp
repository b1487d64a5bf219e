// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdfview/TilePicture.h"

#include "pdfview/PageContent.h"

#include <QPainter>
#include <QRegion>

#include <utility>

namespace pdf {
namespace {

// What a changed annotation may colour beyond its area, in pixels.
constexpr int antialiasing = 2;

QImage drawContent(const PageContent& page, const QRect& rect, double scale, const Cancellation& cancellation)
{
    QImage image(rect.size(), QImage::Format_RGB32);
    if (image.isNull())
        return image;
    image.fill(Qt::white);
    if (!page.content->draw(image, rect.topLeft(), scale, cancellation))
        return {};
    return image;
}

/// The pixels of the tile, from its upper left, in which the page's annotations differ from the picture's;
/// absent where the whole tile may as well be drawn.
std::optional<QRegion>
changedPixels(const TilePicture& picture, const PageContent& page, const QRect& rect, double scale)
{
    if (picture.whole.isNull() || !picture.annotations || !page.annotations)
        return std::nullopt;
    QRegion region;
    for (const QRectF& place : page.annotations->difference(*picture.annotations)) {
        const QRectF bounded =
            QRectF(place.topLeft() * scale, place.size() * scale) &
            QRectF(rect).adjusted(-antialiasing, -antialiasing, antialiasing, antialiasing);
        if (bounded.isEmpty())
            continue;
        const QRect pixels =
            bounded.toAlignedRect().adjusted(-antialiasing, -antialiasing, antialiasing, antialiasing);
        region += (pixels & rect).translated(-rect.topLeft());
    }
    return region;
}

/// Draws the parts of the tile anew. False when that took too long, cost too much or was abandoned.
bool drawParts(
    QImage& image, const QImage& content, const QRegion& parts, const PageContent& page, const QRect& rect,
    double scale, const Cancellation& cancellation)
{
    for (const QRect& part : parts) {
        QImage drawn = content.copy(part);
        if (!page.annotations->draw(drawn, rect.topLeft() + part.topLeft(), scale, cancellation))
            return false;
        QPainter painter(&image);
        painter.drawImage(part.topLeft(), drawn);
    }
    return true;
}

} // namespace

bool drawTile(
    const PageContent& page, const Tile& tile, TilePicture& picture, const Cancellation& cancellation)
{
    const double scale = tile.isWholePage() ? wholePageScale(page.size) : tile.scale;
    const QRect rect = tileRect(tile, pixelSize(page.size, scale));
    const auto changed = changedPixels(picture, page, rect, scale);
    const bool isUnchanged = changed && changed->isEmpty();
    if (!isUnchanged && picture.content.isNull()) {
        picture.content = drawContent(page, rect, scale, cancellation);
        if (picture.content.isNull())
            return false;
    }
    if (!changed) {
        QImage image = picture.content;
        if (page.showsAnnotations() && !page.annotations->draw(image, rect.topLeft(), scale, cancellation))
            return false;
        picture.whole = std::move(image);
    } else if (!isUnchanged) {
        QImage image = picture.whole;
        if (!drawParts(image, picture.content, *changed, page, rect, scale, cancellation))
            return false;
        picture.whole = std::move(image);
    }
    picture.annotations = page.annotations;
    return true;
}

} // namespace pdf
