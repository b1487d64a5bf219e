// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/DrawLimits.h"

#include "pdf/Limits.h"
#include "pdf/MuPDFVersion.h"

#include <algorithm>
#include <cmath>
#include <mutex>

namespace pdf {
namespace {

/// The device's own operations, which are the same for every draw device.
struct DrawOperations
{
    decltype(fz_device::fill_path) fillPath;
    decltype(fz_device::stroke_path) strokePath;
    decltype(fz_device::clip_path) clipPath;
    decltype(fz_device::clip_stroke_path) clipStrokePath;
    decltype(fz_device::begin_tile) beginTile;
};

DrawOperations original;
thread_local fz_rect drawArea = fz_empty_rect;

/// Adds up how far a path goes, within the height of the area that is drawn on.
struct PathMeasure
{
    fz_matrix ctm;
    fz_rect area;
    fz_point start = {};
    fz_point last = {};
    double travel = 0;
    double length = 0;

    void moveTo(float x, float y)
    {
        start = fz_transform_point({x, y}, ctm);
        last = start;
    }

    void lineTo(float x, float y) { goTo(fz_transform_point({x, y}, ctm)); }

    void close() { goTo(start); }

private:
    void goTo(fz_point point)
    {
        const float from = std::clamp(last.y, area.y0, area.y1);
        const float to = std::clamp(point.y, area.y0, area.y1);
        travel += std::fabs(to - from);
        length += std::hypot(point.x - last.x, point.y - last.y);
        last = point;
    }
};

PathMeasure measure(fz_context* ctx, const fz_path* path, fz_matrix ctm)
{
    static const fz_path_walker walker = {
        [](fz_context*, void* measure, float x, float y) {
            static_cast<PathMeasure*>(measure)->moveTo(x, y);
        },
        [](fz_context*, void* measure, float x, float y) {
            static_cast<PathMeasure*>(measure)->lineTo(x, y);
        },
        [](fz_context*, void* measure, float x1, float y1, float x2, float y2, float x3, float y3) {
            auto* self = static_cast<PathMeasure*>(measure);
            self->lineTo(x1, y1);
            self->lineTo(x2, y2);
            self->lineTo(x3, y3);
        },
        [](fz_context*, void* measure) { static_cast<PathMeasure*>(measure)->close(); },
        nullptr,
        nullptr,
        nullptr,
        nullptr};
    PathMeasure result = {ctm, drawArea};
    fz_walk_path(ctx, path, &walker, &result);
    return result;
}

bool isFillable(fz_context* ctx, const fz_path* path, fz_matrix ctm)
{
    return measure(ctx, path, ctm).travel <= limits::pathTravel;
}

bool isStrokable(fz_context* ctx, const fz_path* path, const fz_stroke_state* stroke, fz_matrix ctm)
{
    const PathMeasure size = measure(ctx, path, ctm);
    // A stroke has two sides.
    if (size.travel * 2 > limits::pathTravel)
        return false;
    double period = 0;
    for (int i = 0; i < stroke->dash_len; ++i)
        period += std::fabs(stroke->dash_list[i]);
    period *= fz_matrix_expansion(ctm);
    return stroke->dash_len == 0 || !(period > 0) ||
           size.length * stroke->dash_len / period <= limits::dashes;
}

void fillPath(
    fz_context* ctx, fz_device* device, const fz_path* path, int evenOdd, fz_matrix ctm,
    fz_colorspace* colorspace, const float* color, float alpha, fz_color_params params)
{
    if (isFillable(ctx, path, ctm))
        original.fillPath(ctx, device, path, evenOdd, ctm, colorspace, color, alpha, params);
}

void strokePath(
    fz_context* ctx, fz_device* device, const fz_path* path, const fz_stroke_state* stroke, fz_matrix ctm,
    fz_colorspace* colorspace, const float* color, float alpha, fz_color_params params)
{
    if (isStrokable(ctx, path, stroke, ctm))
        original.strokePath(ctx, device, path, stroke, ctm, colorspace, color, alpha, params);
}

/// Clips by the rectangle around what cannot be clipped by itself. May throw as MuPDF does.
void clipByBounds(fz_context* ctx, fz_device* device, fz_rect bounds, fz_rect scissor)
{
    fz_path* rectangle = fz_new_path(ctx);
    fz_try(ctx)
    {
        fz_rectto(ctx, rectangle, bounds.x0, bounds.y0, bounds.x1, bounds.y1);
        original.clipPath(ctx, device, rectangle, 0, fz_identity, scissor);
    }
    fz_always(ctx)
    {
        fz_drop_path(ctx, rectangle);
    }
    fz_catch(ctx)
    {
        fz_rethrow(ctx);
    }
}

void clipPath(
    fz_context* ctx, fz_device* device, const fz_path* path, int evenOdd, fz_matrix ctm, fz_rect scissor)
{
    if (isFillable(ctx, path, ctm))
        original.clipPath(ctx, device, path, evenOdd, ctm, scissor);
    else
        clipByBounds(ctx, device, fz_bound_path(ctx, path, nullptr, ctm), scissor);
}

void clipStrokePath(
    fz_context* ctx, fz_device* device, const fz_path* path, const fz_stroke_state* stroke, fz_matrix ctm,
    fz_rect scissor)
{
    if (isStrokable(ctx, path, stroke, ctm))
        original.clipStrokePath(ctx, device, path, stroke, ctm, scissor);
    else
        clipByBounds(ctx, device, fz_bound_path(ctx, path, stroke, ctm), scissor);
}

double pixels(fz_rect rect)
{
    return std::max(0.0, double(rect.x1) - rect.x0) * std::max(0.0, double(rect.y1) - rect.y0);
}

int beginTile(
    fz_context* ctx, fz_device* device, fz_rect area, fz_rect tile, float xStep, float yStep, fz_matrix ctm,
    int id)
{
    const double step = std::max(std::fabs(double(xStep) * yStep), 1e-30);
    const double visible = pixels(fz_intersect_rect(fz_transform_rect(area, ctm), drawArea));
    const double visibleTiles = visible / std::max(step * std::pow(fz_matrix_expansion(ctm), 2), 1e-30);
    const double painted = visibleTiles * pixels(fz_intersect_rect(fz_transform_rect(tile, ctm), drawArea));
    const double excess = std::max(pixels(area) / step / limits::tiles, painted / limits::tiledPixels);
    const auto factor = static_cast<float>(std::sqrt(std::max(1.0, excess)));
    return original.beginTile(ctx, device, area, tile, xStep * factor, yStep * factor, ctm, id);
}

} // namespace

void limitDrawing(fz_device* device, fz_rect area)
{
    static std::once_flag known;
    std::call_once(known, [device] {
        original = {
            device->fill_path, device->stroke_path, device->clip_path, device->clip_stroke_path,
            device->begin_tile};
    });
    drawArea = area;
    device->fill_path = fillPath;
    device->stroke_path = strokePath;
    device->clip_path = clipPath;
    device->clip_stroke_path = clipStrokePath;
    device->begin_tile = beginTile;
}

} // namespace pdf
