// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/PDFDisplayList.h"

#include "pdf/DrawLimits.h"
#include "pdf/Engine.h"
#include "pdf/Handles.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace pdf {
namespace {

// A pixel of 32 bits is the bytes blue, green, red, alpha here, which is MuPDF's BGR with alpha.
static_assert(Q_BYTE_ORDER == Q_LITTLE_ENDIAN);

// Samples of pictures that take some milliseconds to unpack.
constexpr std::int64_t slowPictures = 500'000;

struct Target
{
    unsigned char* pixels;
    int width;
    int height;
    int stride;
    QPoint origin;
    float scale;
};

/// May throw as MuPDF does.
void drawList(fz_context* ctx, fz_display_list* list, const Target& target, fz_cookie* cookie)
{
    fz_pixmap* pixmap = fz_new_pixmap_with_data(
        ctx, fz_device_bgr(ctx), target.width, target.height, nullptr, 1, target.stride, target.pixels);
    pixmap->x = target.origin.x();
    pixmap->y = target.origin.y();
    fz_device* device = nullptr;
    fz_var(device);
    fz_try(ctx)
    {
        device = fz_new_draw_device(ctx, fz_identity, pixmap);
        const fz_rect area = fz_rect_from_irect(fz_pixmap_bbox(ctx, pixmap));
        limitDrawing(device, area);
        fz_run_display_list(ctx, list, device, fz_scale(target.scale, target.scale), area, cookie);
        fz_close_device(ctx, device);
    }
    fz_always(ctx)
    {
        fz_drop_device(ctx, device);
        fz_drop_pixmap(ctx, pixmap);
    }
    fz_catch(ctx)
    {
        fz_rethrow(ctx);
    }
}

} // namespace

PDFDisplayList::PDFDisplayList(std::shared_ptr<const DisplayListHandle> handle)
    : m_handle(std::move(handle))
{}

QSizeF PDFDisplayList::displaySize() const
{
    return m_handle->displaySize;
}

bool PDFDisplayList::hasPictures() const
{
    return m_handle->samples >= slowPictures;
}

std::size_t PDFDisplayList::bytes() const
{
    return m_handle->bytes;
}

Result<std::monostate>
PDFDisplayList::draw(QImage& image, QPoint origin, double scale, const Cancellation& cancellation) const
{
    Q_ASSERT(image.format() == QImage::Format_RGB32 || image.format() == QImage::Format_ARGB32_Premultiplied);
    if (image.isNull())
        return std::monostate();
    const Target target = {image.bits(),   image.width(),
                           image.height(), static_cast<int>(image.bytesPerLine()),
                           origin,         static_cast<float>(scale)};
    CookieScope scope(cancellation);
    if (auto error = engine::attempt(
            scope, [&](fz_context* ctx) { drawList(ctx, m_handle->list, target, scope.cookie()); }))
        return *error;
    return std::monostate();
}

QSize pixelSize(QSizeF displaySize, double scale)
{
    // The margin keeps 612 points at a scale of 1.1 from being rounded up by the last bit of a product.
    const auto pixels = [scale](double points) {
        return static_cast<int>(std::clamp(std::ceil(points * scale - 1e-6), 1.0, 1e9));
    };
    return {pixels(displaySize.width()), pixels(displaySize.height())};
}

} // namespace pdf
