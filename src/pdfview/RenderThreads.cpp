// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdfview/RenderThreads.h"

#include <algorithm>
#include <utility>

namespace pdf {

RenderThreads& RenderThreads::shared()
{
    static auto* const threads = new RenderThreads;
    return *threads;
}

RenderThreads::RenderThreads()
    : m_count(std::max(static_cast<int>(std::thread::hardware_concurrency()), 2))
{}

RenderThreads::~RenderThreads()
{
    {
        const std::lock_guard lock(m_mutex);
        m_stopping = true;
        m_jobs.clear();
    }
    m_jobCame.notify_all();
    for (std::thread& thread : m_threads)
        thread.join();
}

void RenderThreads::start(std::function<void()> job)
{
    {
        const std::lock_guard lock(m_mutex);
        m_jobs.push_back(std::move(job));
        const auto busy = static_cast<std::size_t>(m_running) + m_jobs.size();
        if (m_threads.size() < static_cast<std::size_t>(m_count) && busy > m_threads.size())
            m_threads.emplace_back([this] { work(); });
    }
    m_jobCame.notify_one();
}

bool RenderThreads::waitUntilIdle(std::chrono::milliseconds time)
{
    std::unique_lock lock(m_mutex);
    return m_becameIdle.wait_for(lock, time, [this] { return m_running == 0 && m_jobs.empty(); });
}

void RenderThreads::work()
{
    std::unique_lock lock(m_mutex);
    while (true) {
        m_jobCame.wait(lock, [this] { return m_stopping || !m_jobs.empty(); });
        if (m_stopping)
            return;
        auto job = std::move(m_jobs.front());
        m_jobs.pop_front();
        ++m_running;
        lock.unlock();
        job();
        // What the job holds may be the last of a document, whose end is not to be awaited behind the lock.
        job = nullptr;
        lock.lock();
        --m_running;
        if (m_running == 0 && m_jobs.empty())
            m_becameIdle.notify_all();
    }
}

} // namespace pdf
