// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <chrono>
#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace pdf {

/// The threads that draw pages, as many as the machine has cores and at least two, shared by all views of the
/// process. They start with the first job. Safe from any thread, also before there is an application object.
class RenderThreads
{
public:
    static RenderThreads& shared();

    RenderThreads();
    /// Drops the jobs that wait and waits for those that run.
    ~RenderThreads();
    RenderThreads(const RenderThreads&) = delete;
    RenderThreads& operator=(const RenderThreads&) = delete;

    int count() const { return m_count; }

    /// Jobs begin in the order in which they came.
    void start(std::function<void()> job);

    /// Waits until nothing runs or waits any more; false when that took longer.
    bool waitUntilIdle(std::chrono::milliseconds time);

private:
    void work();

    const int m_count;
    std::mutex m_mutex;
    std::condition_variable m_jobCame;
    std::condition_variable m_becameIdle;
    std::deque<std::function<void()>> m_jobs;
    int m_running = 0;
    bool m_stopping = false;
    std::vector<std::thread> m_threads;
};

} // namespace pdf
