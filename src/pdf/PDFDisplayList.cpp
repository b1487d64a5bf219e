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
        // What is thinner than a pixel still colours the ones beside it.
        const auto isTouched = [&](const fz_rect& place) {
            const fz_rect reach = fz_expand_rect(fz_transform_rect(place, scaling), 1);
            return !fz_is_empty_rect(fz_intersect_rect(reach, area));
        };
        for (const auto& group : handle.groups) {
            if (!isTouched(group->area))
                continue;
            for (const ListGroup::Part& part : group->parts) {
                if (isTouched(part.area))
                    fz_run_display_list(ctx, part.list->list(), device, scaling, area, cookie);
            }
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

using Groups = std::span<const std::shared_ptr<const ListGroup>>;
using Lists = std::vector<const RecordedList*>;

// More are put together in one.
constexpr std::size_t mostPlaces = 8;

/// Takes away what both begin with and end with.
template <typename Element>
void dropAlike(std::span<Element>& a, std::span<Element>& b)
{
    const auto start = std::mismatch(a.begin(), a.end(), b.begin(), b.end());
    const auto count = static_cast<std::size_t>(start.first - a.begin());
    a = a.subspan(count);
    b = b.subspan(count);
    const auto end = std::mismatch(a.rbegin(), a.rend(), b.rbegin(), b.rend());
    const auto endCount = static_cast<std::size_t>(end.first - a.rbegin());
    a = a.first(a.size() - endCount);
    b = b.first(b.size() - endCount);
}

Lists listsOf(Groups groups)
{
    Lists lists;
    for (const auto& group : groups) {
        for (const ListGroup::Part& part : group->parts)
            lists.push_back(part.list.get());
    }
    return lists;
}

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
    return m_handle->groups.empty();
}

std::vector<QRectF> PDFDisplayList::difference(const PDFDisplayList& other) const
{
    if (displaySize() != other.displaySize())
        return {QRectF(QPointF(), displaySize())};
    Groups groups(m_handle->groups);
    Groups otherGroups(other.m_handle->groups);
    dropAlike(groups, otherGroups);
    const Lists lists = listsOf(groups);
    const Lists otherLists = listsOf(otherGroups);
    std::span<const RecordedList* const> rest(lists);
    std::span<const RecordedList* const> otherRest(otherLists);
    dropAlike(rest, otherRest);
    // Where as many stand between what is alike, what has the same place in the order is compared.
    const bool isInStep = rest.size() == otherRest.size();
    std::vector<QRectF> places;
    for (std::size_t i = 0; i < std::max(rest.size(), otherRest.size()); ++i) {
        if (isInStep && rest[i] == otherRest[i])
            continue;
        if (i < rest.size())
            addPlace(places, *rest[i]);
        if (i < otherRest.size())
            addPlace(places, *otherRest[i]);
    }
    return places;
}

bool PDFDisplayList::hasPictures() const
{
    std::int64_t samples = 0;
    for (const auto& group : m_handle->groups)
        samples += group->samples;
    return samples >= slowPictures;
}

std::size_t PDFDisplayList::bytes() const
{
    std::size_t bytes = 0;
    for (const auto& group : m_handle->groups)
        bytes += group->bytes;
    return bytes;
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
