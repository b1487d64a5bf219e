// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/ThreadClock.h"

#include <pthread.h>

namespace pdf {

ThreadClock::ThreadClock()
    : m_clock(CLOCK_MONOTONIC)
{
    // A system whose threads have no clocks goes by the time of day, which runs at least as fast.
#ifdef _POSIX_THREAD_CPUTIME
    pthread_getcpuclockid(pthread_self(), &m_clock);
#endif
}

std::chrono::nanoseconds ThreadClock::now() const
{
    timespec time = {};
    clock_gettime(m_clock, &time);
    return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}

} // namespace pdf
