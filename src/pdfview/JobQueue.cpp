// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdfview/JobQueue.h"

#include "pdfview/Waker.h"

#include <deque>
#include <mutex>
#include <thread>

namespace pdf {

/// What the queue and its thread share.
struct JobQueue::Shared
{
    std::mutex mutex;
    /// Null when the queue is gone.
    Waker* waker = nullptr;
    std::deque<std::function<void()>> jobs;
    /// What has been handed back.
    std::deque<std::function<void()>> calls;
    bool isRunning = false;
};

JobQueue::JobQueue()
    : m_shared(std::make_shared<Shared>())
    , m_waker(std::make_unique<Waker>([shared = m_shared] { takeBack(*shared); }))
{
    m_shared->waker = m_waker.get();
}

JobQueue::~JobQueue()
{
    // What they hold is let go of after the lock.
    std::deque<std::function<void()>> calls;
    const std::lock_guard lock(m_shared->mutex);
    m_shared->waker = nullptr;
    calls.swap(m_shared->calls);
}

void JobQueue::start(std::function<void()> job)
{
    const std::lock_guard lock(m_shared->mutex);
    m_shared->jobs.push_back(std::move(job));
    if (std::exchange(m_shared->isRunning, true))
        return;
    std::thread([shared = m_shared] { work(shared); }).detach();
}

void JobQueue::work(const std::shared_ptr<Shared>& shared)
{
    std::unique_lock lock(shared->mutex);
    while (!shared->jobs.empty()) {
        auto job = std::move(shared->jobs.front());
        shared->jobs.pop_front();
        lock.unlock();
        job();
        // It may hold the last of the document.
        job = nullptr;
        lock.lock();
    }
    shared->isRunning = false;
}

void JobQueue::handBack(Shared& shared, std::function<void()> call)
{
    const std::lock_guard lock(shared.mutex);
    if (!shared.waker)
        return;
    shared.calls.push_back(std::move(call));
    shared.waker->wake();
}

void JobQueue::takeBack(Shared& shared)
{
    std::function<void()> call;
    {
        const std::lock_guard lock(shared.mutex);
        call = std::move(shared.calls.front());
        shared.calls.pop_front();
    }
    call();
}

} // namespace pdf
