// SPDX-License-Identifier: AGPL-3.0-or-later
#include <cstddef>
#include <cstdint>
#include <mutex>

// Takes the types of the two headers above for granted.
#include <jbig2.h>

// The pictures of a scanned document share one dictionary of symbols, and the JBIG2 decoder counts the users
// of each symbol without a lock. Two threads that draw at the same time would release a symbol twice, so the
// calls that count go through here (--wrap, see cmake/MuPDF.cmake) one at a time. None of them throws or
// jumps.
namespace pdf {
namespace {

std::mutex& counting()
{
    // Never destroyed: threads may outlive main().
    static auto* mutex = new std::mutex;
    return *mutex;
}

} // namespace

extern "C" {

using DataFunction = int(Jbig2Ctx*, const unsigned char*, std::size_t);
DataFunction realDataIn __asm__("__real_jbig2_data_in");
DataFunction dataIn __asm__("__wrap_jbig2_data_in");

int dataIn(Jbig2Ctx* ctx, const unsigned char* data, std::size_t size)
{
    const std::lock_guard lock(counting());
    return realDataIn(ctx, data, size);
}

using PageFunction = int(Jbig2Ctx*);
PageFunction realCompletePage __asm__("__real_jbig2_complete_page");
PageFunction completePage __asm__("__wrap_jbig2_complete_page");

int completePage(Jbig2Ctx* ctx)
{
    const std::lock_guard lock(counting());
    return realCompletePage(ctx);
}

using FreeFunction = Jbig2Allocator*(Jbig2Ctx*);
FreeFunction realFree __asm__("__real_jbig2_ctx_free");
FreeFunction freeContext __asm__("__wrap_jbig2_ctx_free");

Jbig2Allocator* freeContext(Jbig2Ctx* ctx)
{
    const std::lock_guard lock(counting());
    return realFree(ctx);
}

using FreeGlobalFunction = Jbig2Allocator*(Jbig2GlobalCtx*);
FreeGlobalFunction realFreeGlobal __asm__("__real_jbig2_global_ctx_free");
FreeGlobalFunction freeGlobal __asm__("__wrap_jbig2_global_ctx_free");

Jbig2Allocator* freeGlobal(Jbig2GlobalCtx* ctx)
{
    const std::lock_guard lock(counting());
    return realFreeGlobal(ctx);
}

} // extern "C"

} // namespace pdf
