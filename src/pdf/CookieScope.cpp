// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/CookieScope.h"

#include "pdf/CancellationState.h"
#include "pdf/ProcessorBudget.h"

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <vector>

namespace pdf {
namespace {

thread_local CookieScope* currentScope = nullptr;

// How long the watch sleeps at least, however little time an operation has left.
constexpr std::chrono::milliseconds shortestLook(5);

/// When an operation that begins now has spent its time, in the thread's processor time.
std::chrono::nanoseconds endOf(const ThreadClock& clock, std::chrono::milliseconds time)
{
    const std::chrono::nanoseconds end = clock.now() + time;
    const ProcessorBudget* const budget = ProcessorBudget::current();
    return budget ? std::min(end, budget->end()) : end;
}

} // namespace

/// Stops the operations whose time is over. Its thread starts with the first operation and sleeps until the
/// first of those that it knows of can have spent its time; as nearly all are long over by then, it hardly
/// ever runs.
class DeadlineWatch
{
public:
    /// Lives as long as the process, because operations on other threads may outlive main().
    static DeadlineWatch& shared()
    {
        static auto* watch = new DeadlineWatch;
        return *watch;
    }

    void add(CookieScope* scope)
    {
        const std::lock_guard lock(m_mutex);
        m_scopes.push_back(scope);
        if (scope->m_nextLook < m_wakeTime)
            m_changed.notify_one();
    }

    void remove(CookieScope* scope)
    {
        const std::lock_guard lock(m_mutex);
        std::erase(m_scopes, scope);
    }

private:
    using TimePoint = CookieScope::Clock::time_point;

    DeadlineWatch() { std::thread(&DeadlineWatch::watch, this).detach(); }

    [[noreturn]] void watch()
    {
        std::unique_lock lock(m_mutex);
        for (;;) {
            const TimePoint now = CookieScope::Clock::now();
            m_wakeTime = TimePoint::max();
            for (CookieScope* scope : m_scopes) {
                if (scope->m_nextLook <= now)
                    scope->watch(now);
                m_wakeTime = std::min(m_wakeTime, scope->m_nextLook);
            }
            if (m_wakeTime == TimePoint::max())
                m_changed.wait(lock);
            else
                m_changed.wait_until(lock, m_wakeTime);
        }
    }

    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::vector<CookieScope*> m_scopes;
    TimePoint m_wakeTime = TimePoint::max();
};

CookieScope::CookieScope(const Cancellation& cancellation, std::chrono::milliseconds time)
    : m_cancellation(cancellation)
    , m_end(endOf(m_clock, time))
    , m_deadline(cancellation.m_state->deadline.value_or(Clock::time_point::max()))
    // The processor's time runs no faster than the clock.
    , m_nextLook(std::min<Clock::time_point>(m_deadline, Clock::now() + (m_end - m_clock.now())))
{
    currentScope = this;
    {
        const std::lock_guard lock(m_cancellation.m_state->mutex);
        m_cancellation.m_state->scopes.push_back(this);
    }
    DeadlineWatch::shared().add(this);
    const ProcessorBudget* const budget = ProcessorBudget::current();
    if (m_cancellation.isCancelled() || (budget && budget->isSpent()))
        stop();
}

CookieScope::~CookieScope()
{
    DeadlineWatch::shared().remove(this);
    {
        const std::lock_guard lock(m_cancellation.m_state->mutex);
        std::erase(m_cancellation.m_state->scopes, this);
    }
    currentScope = nullptr;
}

CookieScope* CookieScope::current()
{
    return currentScope;
}

void CookieScope::watch(Clock::time_point now)
{
    const auto left = m_end - m_clock.now();
    if (left <= left.zero() || now >= m_deadline) {
        stop();
        m_nextLook = Clock::time_point::max();
    } else {
        m_nextLook = std::min(m_deadline, now + std::max<Clock::duration>(left, shortestLook));
    }
}

void CookieScope::stop()
{
    std::atomic_ref(m_cookie.abort).store(1, std::memory_order_relaxed);
}

bool CookieScope::isStopped() const
{
    // The reference is only read through; atomic_ref has no constructor for constant objects yet.
    return std::atomic_ref(const_cast<int&>(m_cookie.abort)).load(std::memory_order_relaxed) != 0;
}

bool CookieScope::isRefused()
{
    if (!isStopped())
        return false;
    if (!m_refusal)
        m_refusal = Clock::now() + limits::grace;
    return Clock::now() >= *m_refusal;
}

std::optional<PDFError> CookieScope::interruption() const
{
    if (!isStopped())
        return std::nullopt;
    if (m_cancellation.isCancelled())
        return PDFError{PDFError::Code::cancelled, QStringLiteral("the operation was cancelled")};
    return PDFError{PDFError::Code::limitExceeded, QStringLiteral("the document asks for too much")};
}

} // namespace pdf
