// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/RecordedList.h"

#include "pdf/Engine.h"
#include "pdf/MuPDFVersion.h"
#include "pdf/PictureCount.h"

#include <algorithm>

namespace pdf {
namespace {

/// Ends the groups and clips that damaged content has left open, so that what is in them is shown.
void closeContainers(fz_context* ctx, fz_device* device)
{
    while (device->container_len > 0) {
        switch (device->container[device->container_len - 1].type) {
        case fz_device_container_stack_is_mask:
            fz_end_mask(ctx, device);
            break;
        case fz_device_container_stack_is_group:
            fz_end_group(ctx, device);
            break;
        case fz_device_container_stack_is_tile:
            fz_end_tile(ctx, device);
            break;
        default:
            fz_pop_clip(ctx, device);
        }
    }
}

void runUndamaged(fz_context* ctx, RecordedList::Run run, void* source, fz_device* device, fz_cookie* cookie)
{
    fz_try(ctx)
    {
        run(ctx, source, device, cookie);
    }
    fz_catch(ctx)
    {
        engine::rethrowUnlessDamage(ctx);
    }
    closeContainers(ctx, device);
}

} // namespace

RecordedList::~RecordedList()
{
    fz_drop_display_list(engine::context(), m_list);
}

void RecordedList::record(fz_context* ctx, fz_rect page, Run run, void* source, fz_cookie* cookie)
{
    const std::ptrdiff_t before = engine::memoryOfThread();
    m_list = fz_new_display_list(ctx, page);
    fz_device* device = nullptr;
    fz_var(device);
    fz_try(ctx)
    {
        device = fz_new_list_device(ctx, m_list);
        countPictures(device, m_samples);
        runUndamaged(ctx, run, source, device, cookie);
        fz_close_device(ctx, device);
    }
    fz_always(ctx)
    {
        fz_drop_device(ctx, device);
    }
    fz_catch(ctx)
    {
        fz_rethrow(ctx);
    }
    m_bytes = static_cast<std::size_t>(std::max(engine::memoryOfThread() - before, std::ptrdiff_t{0}));
}

void RecordedList::measure(fz_context* ctx, fz_cookie* cookie)
{
    fz_device* device = fz_new_bbox_device(ctx, &m_area);
    fz_try(ctx)
    {
        fz_run_display_list(ctx, m_list, device, fz_identity, fz_infinite_rect, cookie);
        fz_close_device(ctx, device);
    }
    fz_always(ctx)
    {
        fz_drop_device(ctx, device);
    }
    fz_catch(ctx)
    {
        fz_rethrow(ctx);
    }
}

} // namespace pdf
