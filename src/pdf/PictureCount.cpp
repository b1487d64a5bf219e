// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/PictureCount.h"

#include "pdf/MuPDFVersion.h"

#include <mutex>

namespace pdf {
namespace {

/// The device's own operations, which are the same for every list device.
struct RecordOperations
{
    decltype(fz_device::fill_image) fillImage;
    decltype(fz_device::fill_image_mask) fillMask;
    decltype(fz_device::clip_image_mask) clipMask;
};

RecordOperations original;
thread_local std::int64_t* counted = nullptr;

void count(const fz_image* image)
{
    *counted += std::int64_t{image->w} * image->h;
}

void fillImage(
    fz_context* ctx, fz_device* device, fz_image* image, fz_matrix ctm, float alpha, fz_color_params params)
{
    count(image);
    original.fillImage(ctx, device, image, ctm, alpha, params);
}

void fillMask(
    fz_context* ctx, fz_device* device, fz_image* image, fz_matrix ctm, fz_colorspace* colorspace,
    const float* color, float alpha, fz_color_params params)
{
    count(image);
    original.fillMask(ctx, device, image, ctm, colorspace, color, alpha, params);
}

void clipMask(fz_context* ctx, fz_device* device, fz_image* image, fz_matrix ctm, fz_rect scissor)
{
    count(image);
    original.clipMask(ctx, device, image, ctm, scissor);
}

} // namespace

void countPictures(fz_device* device, std::int64_t& samples)
{
    static std::once_flag known;
    std::call_once(known, [device] {
        original = {device->fill_image, device->fill_image_mask, device->clip_image_mask};
    });
    counted = &samples;
    device->fill_image = fillImage;
    device->fill_image_mask = fillMask;
    device->clip_image_mask = clipMask;
}

} // namespace pdf
