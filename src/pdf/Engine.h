// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "pdf/CookieScope.h"
#include "pdf/PDFError.h"

#include <mupdf/fitz.h>

#include <cstddef>
#include <new>
#include <optional>

// The one place where MuPDF is set up, where its memory comes from, and where its errors become ours.
namespace pdf::engine {

/// The calling thread's own clone of the process's context; it goes with the thread.
fz_context* context();

/// Live bytes of all MuPDF's memory.
std::size_t memoryInUse();

/// For a place that can make do with a part of its result: goes on where the document was damaged, and throws
/// again, as MuPDF does, when memory was short or the operation was stopped. To be called in fz_catch.
void rethrowUnlessDamage(fz_context* ctx);

/// Runs `work(context, data)`, in which MuPDF may throw, as part of the operation. MuPDF's exceptions are
/// jumps that skip destructors, so no C++ object that has one may be alive in `work` where MuPDF is called.
std::optional<PDFError>
attemptCall(CookieScope& scope, void (*work)(fz_context* ctx, void* data), void* data);

/// The same for a function object that takes the context. An interrupted operation is an error even where
/// MuPDF went on as well as it could.
template <typename Work>
std::optional<PDFError> attempt(CookieScope& scope, Work work)
{
    return attemptCall(
        scope, [](fz_context* ctx, void* data) { (*static_cast<Work*>(data))(ctx); }, &work);
}

/// For C++ code that is called where MuPDF may jump over it: a lack of memory in it becomes MuPDF's.
template <typename Call>
void guarded(fz_context* ctx, Call call)
{
    bool failed = false;
    try {
        call();
    } catch (const std::bad_alloc&) {
        failed = true;
    }
    if (failed)
        fz_throw(ctx, FZ_ERROR_MEMORY, "there is not enough memory");
}

} // namespace pdf::engine
