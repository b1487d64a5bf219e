// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "pdf/Cancellation.h"

#include <atomic>
#include <chrono>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

namespace pdf {

class CookieScope;

struct Cancellation::State
{
    /// Any thread.
    void cancel();

    std::atomic<bool> cancelled = false;
    std::optional<std::chrono::steady_clock::time_point> deadline;

    std::mutex mutex;
    /// The operations that run under this cancellation; guarded by the mutex.
    std::vector<CookieScope*> scopes;
};

} // namespace pdf
