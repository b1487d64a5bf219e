// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/Engine.h"

#include "pdf/Limits.h"
#include "pdf/MuPDFVersion.h"

#include <array>
#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <malloc.h>
#include <mutex>
#include <new>
#include <stdexcept>

namespace pdf::engine {
namespace {

std::atomic<std::size_t> liveBytes = 0;
thread_local std::ptrdiff_t threadBytes = 0;

void takeAway(std::size_t size)
{
    liveBytes.fetch_sub(size, std::memory_order_relaxed);
    threadBytes -= static_cast<std::ptrdiff_t>(size);
}

/// Stands before each block, because giving memory back has to know how much it was.
struct alignas(std::max_align_t) BlockHeader
{
    std::size_t size;
};

/// Counts the bytes in, or says that they are not to be had.
bool reserve(std::size_t size)
{
    if (CookieScope* scope = CookieScope::current(); scope && scope->isRefused())
        return false;
    if (size > limits::memory ||
        liveBytes.fetch_add(size, std::memory_order_relaxed) > limits::memory - size) {
        if (size <= limits::memory)
            liveBytes.fetch_sub(size, std::memory_order_relaxed);
        return false;
    }
    threadBytes += static_cast<std::ptrdiff_t>(size);
    return true;
}

void* allocate(void*, std::size_t size)
{
    if (!reserve(size))
        return nullptr;
    auto* header = static_cast<BlockHeader*>(std::malloc(sizeof(BlockHeader) + size));
    if (!header) {
        takeAway(size);
        return nullptr;
    }
    header->size = size;
    return header + 1;
}

void release(void*, void* block)
{
    if (!block)
        return;
    auto* header = static_cast<BlockHeader*>(block) - 1;
    takeAway(header->size);
    std::free(header);
}

void* reallocate(void*, void* block, std::size_t size)
{
    if (!block)
        return allocate(nullptr, size);
    auto* header = static_cast<BlockHeader*>(block) - 1;
    const std::size_t oldSize = header->size;
    if (size > oldSize && !reserve(size - oldSize))
        return nullptr;
    header = static_cast<BlockHeader*>(std::realloc(header, sizeof(BlockHeader) + size));
    if (!header) {
        if (size > oldSize)
            takeAway(size - oldSize);
        return nullptr;
    }
    if (size < oldSize)
        takeAway(oldSize - size);
    header->size = size;
    return header + 1;
}

using Locks = std::array<std::mutex, FZ_LOCK_MAX>;

void lock(void* locks, int index)
{
    (*static_cast<Locks*>(locks))[static_cast<std::size_t>(index)].lock();
}

void unlock(void* locks, int index)
{
    (*static_cast<Locks*>(locks))[static_cast<std::size_t>(index)].unlock();
}

void ignoreMessage(void*, const char*)
{}

/// A picture that is drawn in several tiles is unpacked once and kept, rather than in part for each tile:
/// most of them can only be unpacked from their beginning on. Besides, each part would be fitted to whole
/// pixels by itself, and the tiles would not fit together.
void chooseDecodedPart(void*, int width, int height, int halvings, fz_irect* part)
{
    const auto pixels = (std::int64_t{width} >> halvings) * (std::int64_t{height} >> halvings);
    if (pixels <= limits::wholePicture)
        *part = {0, 0, width, height};
}

/// Unpacked pictures and tiles come and go all the time. Blocks of their size are given back to the system at
/// once. By itself the C library would take them from its heaps from the second one on, each thread from one
/// of its own, and what lies between them would keep the heaps from becoming smaller.
void returnLargeBlocks()
{
#ifdef __GLIBC__
    mallopt(M_MMAP_THRESHOLD, limits::largeBlock);
#endif
}

/// Made once and never dropped: clones on other threads may outlive main().
fz_context* makeBaseContext()
{
    returnLargeBlocks();
    static auto* locks = new Locks;
    static const fz_alloc_context allocator = {nullptr, allocate, reallocate, release};
    static const fz_locks_context locking = {locks, lock, unlock};
    fz_context* base = fz_new_context(&allocator, &locking, limits::kept::store);
    if (!base)
        throw std::bad_alloc();
    // Damage in a file is told by results; MuPDF's remarks about it would go to the terminal.
    fz_set_warning_callback(base, ignoreMessage, nullptr);
    fz_set_error_callback(base, ignoreMessage, nullptr);
    fz_tune_image_decode(base, chooseDecodedPart, nullptr);
    return base;
}

thread_local fz_context* threadContext = nullptr;

struct ThreadContextDropper
{
    ~ThreadContextDropper()
    {
        fz_drop_context(threadContext);
        threadContext = nullptr;
    }
};

fz_context* cloneForThread()
{
    static fz_context* const base = makeBaseContext();
    // Cloning copies from the base and may happen on several threads at once.
    static std::mutex cloning;
    const std::lock_guard lock(cloning);
    fz_context* clone = fz_clone_context(base);
    if (!clone)
        throw std::bad_alloc();
    return clone;
}

PDFError caughtError(fz_context* ctx)
{
    const QString message = QString::fromUtf8(fz_caught_message(ctx));
    const bool outOfMemory = fz_caught(ctx) == FZ_ERROR_MEMORY;
    return {outOfMemory ? PDFError::Code::limitExceeded : PDFError::Code::damaged, message};
}

PDFError outOfMemory()
{
    return {PDFError::Code::limitExceeded, QStringLiteral("there is not enough memory")};
}

PDFError unexpectedError()
{
    return {PDFError::Code::damaged, QStringLiteral("the operation failed unexpectedly")};
}

/// What became of a call; absent when it came to its end. Nothing of the exception outlives this function, so
/// that MuPDF may jump afterwards.
std::optional<PDFError> failureOf(void (*call)(void* data), void* data)
{
    try {
        call(data);
        return std::nullopt;
    } catch (const std::bad_alloc&) {
        return outOfMemory();
    } catch (const std::length_error&) {
        // A container that was asked for more than it can ever hold.
        return outOfMemory();
    } catch (...) {
        return unexpectedError();
    }
}

} // namespace

fz_context* context()
{
    if (!threadContext) {
        threadContext = cloneForThread();
        thread_local const ThreadContextDropper dropper;
    }
    return threadContext;
}

std::size_t memoryInUse()
{
    return liveBytes.load(std::memory_order_relaxed);
}

std::ptrdiff_t memoryOfThread()
{
    return threadBytes;
}

void rethrowUnlessDamage(fz_context* ctx)
{
    const int code = fz_caught(ctx);
    if (code == FZ_ERROR_MEMORY || code == FZ_ERROR_ABORT || code == FZ_ERROR_TRYLATER)
        fz_rethrow(ctx);
}

void translatedCall(fz_context* ctx, void (*call)(void* data), void* data)
{
    fz_error_stack_slot* const top = ctx->error.top;
    int code = FZ_ERROR_NONE;
    if (auto failure = failureOf(call, data)) {
        code = failure->code == PDFError::Code::limitExceeded ? FZ_ERROR_MEMORY : FZ_ERROR_ABORT;
        // MuPDF drops what it uses on other occasions, too, when there is no operation.
        if (CookieScope* scope = CookieScope::current())
            scope->fail(*std::move(failure));
    }
    if (code == FZ_ERROR_NONE)
        return;
    // The slots of the fz_try blocks that the exception has left.
    ctx->error.top = top;
    fz_throw(ctx, code, "a C++ exception ended the operation");
}

void takeBytes(fz_context* ctx, fz_buffer* buffer, QByteArray& bytes)
{
    fz_try(ctx)
    {
        unsigned char* data = nullptr;
        const std::size_t size = fz_buffer_storage(ctx, buffer, &data);
        translated(ctx, [&] {
            bytes = QByteArray(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
        });
    }
    fz_always(ctx)
    {
        fz_drop_buffer(ctx, buffer);
    }
    fz_catch(ctx)
    {
        fz_rethrow(ctx);
    }
}

std::optional<PDFError> attemptCall(CookieScope& scope, void (*work)(fz_context* ctx, void* data), void* data)
{
    fz_context* ctx = context();
    bool failed = false;
    fz_var(failed);
    fz_try(ctx)
    {
        translated(ctx, [&] { work(ctx, data); });
    }
    fz_catch(ctx)
    {
        failed = true;
    }
    if (auto interruption = scope.interruption())
        return interruption;
    if (failed)
        return caughtError(ctx);
    return std::nullopt;
}

} // namespace pdf::engine
