// SPDX-License-Identifier: AGPL-3.0-or-later
#include "printing/RunningPrints.h"

#include <condition_variable>
#include <mutex>

namespace quillo {
namespace {

struct Count
{
    std::mutex mutex;
    std::condition_variable changed;
    int running = 0;
};

/// Never destroyed: a thread may outlive main().
Count& count()
{
    static auto* const shared = new Count;
    return *shared;
}

} // namespace

RunningPrint::RunningPrint()
{
    const std::lock_guard lock(count().mutex);
    ++count().running;
}

RunningPrint::~RunningPrint()
{
    const std::lock_guard lock(count().mutex);
    --count().running;
    count().changed.notify_all();
}

void waitForRunningPrints(std::chrono::milliseconds patience)
{
    std::unique_lock lock(count().mutex);
    count().changed.wait_for(lock, patience, [] { return count().running == 0; });
}

} // namespace quillo
