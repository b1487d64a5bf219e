// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "pdf/CookieScope.h"
#include "pdf/PDFError.h"

#include <mupdf/fitz.h>

#include <QByteArray>

#include <cstddef>
#include <optional>

// The one place where MuPDF is set up, where its memory comes from, and where its errors and the exceptions
// of C++ become results.
//
// MuPDF's exceptions are jumps. They skip C++'s destructors, so no object that has one may be alive where
// MuPDF is called. C++'s exceptions skip MuPDF's handlers: one that left through fz_try would leave its slot
// on the jump stack for good, and what the skipped fz_always would have given back, be it memory, a lock or a
// counter. The compiler cannot add handlers to MuPDF's functions; therefore no C++ exception gets as far as
// them. It is caught in one place, translated(), which makes one of MuPDF's of it, and from there on
// everything is given back as for any other failure, up to attempt(), which makes a result of it.
//
// attempt() translates what leaves the work it is given. So code within it may throw freely, and calls
// translated() by itself only where something would be skipped on the way: in functions that MuPDF calls, and
// within fz_try with fz_always.
namespace pdf::engine {

/// The calling thread's own clone of the process's context; it goes with the thread.
fz_context* context();

/// Live bytes of all MuPDF's memory.
std::size_t memoryInUse();

/// The same as far as it was taken on the calling thread; less than nothing where more was given back.
std::ptrdiff_t memoryOfThread();

/// For a place that can make do with a part of its result: goes on where the document was damaged, and throws
/// again, as MuPDF does, when memory was short or the operation was stopped. To be called in fz_catch.
void rethrowUnlessDamage(fz_context* ctx);

/// Runs `work(context, data)`, in which both MuPDF and C++ may throw, as part of the operation.
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

void translatedCall(fz_context* ctx, void (*call)(void* data), void* data);

/// Calls a function object, and throws as MuPDF does where it throws as C++ does. The operation then fails as
/// a whole, even where MuPDF takes what was thrown for damage in the document and goes on without the part.
template <typename Call>
void translated(fz_context* ctx, Call call)
{
    translatedCall(
        ctx, [](void* data) { (*static_cast<Call*>(data))(); }, &call);
}

/// Copies the buffer's bytes and drops the buffer, also where that fails. May throw as MuPDF does.
void takeBytes(fz_context* ctx, fz_buffer* buffer, QByteArray& bytes);

} // namespace pdf::engine
