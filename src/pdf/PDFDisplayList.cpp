// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/PDFDisplayList.h"

#include "pdf/DrawLimits.h"
#include "pdf/Engine.h"
#include "pdf/RecordedList.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <span>
#include <utility>

namespace pdf {
namespace {

// A pixel of 32 bits is the bytes blue, green, red, alpha here, which is MuPDF's BGR with alpha.
static_assert(Q_BYTE_ORDER == Q_LITTLE_ENDIAN);

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
void drawLists(fz_context* ctx, const DisplayListHandle& handle, const Target& target, fz_cookie* cookie)
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
        const fz_matrix scaling = fz_scale(target.scale, target.scale);
        for (const auto& part : handle.parts) {
            // What is thinner than a pixel still colours the ones beside it.
            const fz_rect reach = fz_expand_rect(fz_transform_rect(part->area(), scaling), 1);
            if (!fz_is_empty_rect(fz_intersect_rect(reach, area)))
                fz_run_display_list(ctx, part->list(), device, scaling, area, cookie);
        }
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

using Part = std::shared_ptr<const RecordedList>;

// More are put together in one.
constexpr std::size_t mostPlaces = 8;

void addPlace(std::vector<QRectF>& places, const RecordedList& list)
{
    const fz_rect area = list.area();
    const QRectF place(QPointF(area.x0, area.y0), QPointF(area.x1, area.y1));
    if (places.size() < mostPlaces)
        places.push_back(place);
    else
        places.back() |= place;
}

} // namespace

PDFDisplayList::PDFDisplayList(std::shared_ptr<const DisplayListHandle> handle)
    : m_handle(std::move(handle))
{}

QSizeF PDFDisplayList::displaySize() const
{
    return m_handle->displaySize;
}

bool PDFDisplayList::isEmpty() const
{
    return m_handle->parts.empty();
}

std::vector<QRectF> PDFDisplayList::difference(const PDFDisplayList& other) const
{
    if (displaySize() != other.displaySize())
        return {QRectF(QPointF(), displaySize())};
    const std::span<const Part> mine(m_handle->parts);
    const std::span<const Part> others(other.m_handle->parts);
    const auto alike = std::mismatch(mine.begin(), mine.end(), others.begin(), others.end());
    const std::span<const Part> rest(alike.first, mine.end());
    const std::span<const Part> otherRest(alike.second, others.end());
    const auto ends = std::mismatch(rest.rbegin(), rest.rend(), otherRest.rbegin(), otherRest.rend());
    const auto count = static_cast<std::size_t>(rest.rend() - ends.first);
    const auto otherCount = static_cast<std::size_t>(otherRest.rend() - ends.second);
    // Where as many stand between what is alike, what has the same place in the order is compared.
    const bool isInStep = count == otherCount;
    std::vector<QRectF> places;
    for (std::size_t i = 0; i < std::max(count, otherCount); ++i) {
        if (isInStep && rest[i] == otherRest[i])
            continue;
        if (i < count)
            addPlace(places, *rest[i]);
        if (i < otherCount)
            addPlace(places, *otherRest[i]);
    }
    return places;
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
            scope, [&](fz_context* ctx) { drawLists(ctx, *m_handle, target, scope.cookie()); }))
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
