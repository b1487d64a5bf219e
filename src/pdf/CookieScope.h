// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "pdf/Cancellation.h"
#include "pdf/Limits.h"
#include "pdf/PDFError.h"
#include "pdf/ThreadClock.h"

#include <mupdf/fitz.h>

#include <chrono>
#include <optional>

namespace pdf {

/// One operation of the engine on the calling thread, from construction to destruction: it ends early when
/// its caller cancels or when it has spent its time. What counts is the processor's time, so that a document
/// gets as much on a machine that is busy with other things or whose disk is slow. MuPDF is stopped in three
/// ways, each of which reaches loops that the others do not: by the cookie, by the file stream, and, after a
/// moment of grace, by the allocator. Scopes do not nest.
class CookieScope
{
public:
    /// The operation may spend the given time. It ends earlier when the thread's budget is spent (see
    /// ProcessorBudget) and when the cancellation has a deadline.
    explicit CookieScope(
        const Cancellation& cancellation, std::chrono::milliseconds time = limits::operation);
    ~CookieScope();
    CookieScope(const CookieScope&) = delete;
    CookieScope& operator=(const CookieScope&) = delete;

    /// The operation of the calling thread, or null.
    static CookieScope* current();

    /// To be handed to MuPDF; nobody but this class changes `abort`.
    fz_cookie* cookie() { return &m_cookie; }

    /// Tells the operation to stop. Any thread.
    void stop();

    /// Tells the operation to stop for a reason of its own. For the operation's thread.
    void fail(PDFError reason);

    bool isStopped() const;
    /// True when the operation was told to stop and has had its time to do so. For the operation's thread.
    bool isRefused();

    /// Why the operation was stopped; absent when it was not.
    std::optional<PDFError> interruption() const;

private:
    friend class DeadlineWatch;
    using Clock = std::chrono::steady_clock;

    /// Not yet known to anybody who could stop it.
    CookieScope(const Cancellation& cancellation, std::chrono::milliseconds time, Clock::time_point now);

    /// Stops the operation where its time is over, else says when to look again.
    void watch(Clock::time_point now);

    const Cancellation m_cancellation;
    const ThreadClock m_clock;
    /// In processor time.
    const std::chrono::nanoseconds m_end;
    const Clock::time_point m_deadline;
    /// When to look at the time again; the watch's own.
    Clock::time_point m_nextLook;
    fz_cookie m_cookie = {};
    std::optional<Clock::time_point> m_refusal;
    std::optional<PDFError> m_failure;
    bool m_isWatched = false;
};

} // namespace pdf
