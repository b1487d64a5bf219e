// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <sys/resource.h>

#include <algorithm>
#include <ctime>
#include <limits>

namespace quillo::benchmark {

/// Processor time of this process and of its children that have ended, in seconds. All jobs here use one
/// processor at a time, and this, unlike the clock on the wall, does not count what others do meanwhile.
inline double processorSeconds()
{
    timespec own{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &own);
    rusage children{};
    getrusage(RUSAGE_CHILDREN, &children);
    const auto seconds = [](const timeval& time) {
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
    };
    return static_cast<double>(own.tv_sec) + static_cast<double>(own.tv_nsec) * 1e-9 +
           seconds(children.ru_utime) + seconds(children.ru_stime);
}

/// Seconds that the job takes, the least of some rounds: what disturbs a measurement only ever adds to it.
template <typename Job>
double secondsOf(int rounds, Job&& job)
{
    double least = std::numeric_limits<double>::max();
    for (int round = 0; round < rounds; ++round) {
        const double start = processorSeconds();
        job();
        least = std::min(least, processorSeconds() - start);
    }
    return least;
}

} // namespace quillo::benchmark
