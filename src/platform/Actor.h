// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <QFuture>
#include <QPromise>
#include <QRunnable>
#include <QThreadPool>

#include <atomic>
#include <exception>
#include <memory>
#include <type_traits>
#include <utility>

namespace quillo {

/// A serial executor off the main thread: jobs run one at a time, in the order in which they came. What only
/// an actor's jobs touch needs no lock. The thread starts with the first job and is given back to the system
/// after some idle time, so an actor that is never used costs nothing.
class Actor
{
public:
    /// The name shows up in debuggers and thread lists.
    explicit Actor(const QString& name);
    /// Waits for the jobs that have come so far.
    ~Actor();
    Actor(const Actor&) = delete;
    Actor& operator=(const Actor&) = delete;

    /// Queues the job and returns at once, from any thread. An exception that the job throws is thrown
    /// by the future's result(). Callers on the main thread go on with `.then(context, ...)`, never by
    /// waiting.
    template <typename Job>
    auto run(Job&& job)
    {
        auto task = std::make_unique<Task<std::decay_t<Job>>>(std::decay_t<Job>(std::forward<Job>(job)));
        auto future = task->future();
        start(std::move(task));
        return future;
    }

private:
    /// A job on its way to the actor's thread. QtConcurrent::run would do the same, but hands the job over
    /// behind locks inside Qt, where the thread sanitizer sees none; with the hand-over in plain sight its
    /// reports about jobs stay true.
    class TaskBase : public QRunnable
    {
    public:
        void handOver() { m_handedOver.store(true, std::memory_order_release); }
        void run() final
        {
            if (m_handedOver.load(std::memory_order_acquire))
                runJob();
        }

    private:
        virtual void runJob() = 0;

        std::atomic<bool> m_handedOver = false;
    };

    template <typename Job>
    class Task final : public TaskBase
    {
    public:
        using Value = std::invoke_result_t<Job&>;

        explicit Task(Job job)
            : m_job(std::move(job))
        {
            m_promise.start();
        }

        QFuture<Value> future() { return m_promise.future(); }

    private:
        void runJob() override
        {
            try {
                if constexpr (std::is_void_v<Value>)
                    m_job();
                else
                    m_promise.addResult(m_job());
            } catch (...) {
                m_promise.setException(std::current_exception());
            }
            m_promise.finish();
        }

        Job m_job;
        QPromise<Value> m_promise;
    };

    void start(std::unique_ptr<TaskBase> task);

    QThreadPool m_pool;
};

} // namespace quillo
