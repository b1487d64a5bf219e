// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <functional>
#include <memory>
#include <utility>

namespace pdf {

class Waker;

/// Does jobs one after another on a thread of its own, so that the view never waits for the document. The
/// thread begins with the first job, ends when there are no more, and is not waited for by whoever closes a
/// window: jobs that were given are done all the same, but nobody receives what comes of them.
class JobQueue
{
public:
    JobQueue();
    ~JobQueue();
    JobQueue(const JobQueue&) = delete;
    JobQueue& operator=(const JobQueue&) = delete;

    /// What the job gives is handed to `receive` on the thread that this object lives on, unless the object
    /// is gone by then.
    template <typename Job, typename Receive>
    void add(Job job, Receive receive)
    {
        start([shared = m_shared, job = std::move(job), receive = std::move(receive)] {
            handBack(*shared, [receive, result = job()] { receive(result); });
        });
    }

private:
    struct Shared;

    void start(std::function<void()> job);
    static void work(const std::shared_ptr<Shared>& shared);
    static void handBack(Shared& shared, std::function<void()> call);
    static void takeBack(Shared& shared);

    const std::shared_ptr<Shared> m_shared;
    /// Lives as long as this object; what is handed back is called by it.
    const std::unique_ptr<Waker> m_waker;
};

} // namespace pdf
