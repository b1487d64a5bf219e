// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdfview/JobQueue.h"

#include <QMetaObject>

#include <deque>
#include <mutex>
#include <thread>

namespace pdf {

/// What the queue and its thread share.
struct JobQueue::Shared
{
    std::mutex mutex;
    /// Null when the queue is gone.
    QObject* receiver = nullptr;
    std::deque<std::function<void()>> jobs;
    bool isRunning = false;
};

JobQueue::JobQueue()
    : m_receiver(std::make_unique<QObject>())
    , m_shared(std::make_shared<Shared>())
{
    m_shared->receiver = m_receiver.get();
}

JobQueue::~JobQueue()
{
    const std::lock_guard lock(m_shared->mutex);
    m_shared->receiver = nullptr;
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
    if (shared.receiver)
        QMetaObject::invokeMethod(shared.receiver, std::move(call), Qt::QueuedConnection);
}

} // namespace pdf
