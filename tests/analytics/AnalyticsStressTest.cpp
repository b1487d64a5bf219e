// SPDX-License-Identifier: AGPL-3.0-or-later
#include "analytics/AnalyticsService.h"

#include "analytics/AnalyticsFakes.h"
#include "analytics/AnalyticsJson.h"
#include "analytics/Inflate.h"
#include "platform/DefaultsKeys.h"
#include "platform/UserDefaults.h"
#include "support/Printing.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include <atomic>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <random>
#include <thread>

namespace quillo {
namespace {

/// A transport whose requests end on several threads at once, each in a way that chance decides.
class UnsteadyTransport : public AnalyticsTransport
{
public:
    UnsteadyTransport()
    {
        for (unsigned seed = 0; seed < threadCount; ++seed)
            m_threads.emplace_back([this, seed] { run(seed); });
    }
    ~UnsteadyTransport() override { finish(); }

    void post(const AnalyticsRequest& request, Completion completion) override
    {
        const std::lock_guard guard(m_mutex);
        m_jobs.push_back({request.body, std::move(completion)});
        m_wake.notify_one();
    }

    /// Ends what is on its way.
    void finish()
    {
        {
            const std::lock_guard guard(m_mutex);
            m_finishing = true;
        }
        m_wake.notify_all();
        for (std::thread& thread : m_threads)
            thread.join();
        m_threads.clear();
    }

    /// The bodies of the requests that were answered with 200.
    std::vector<QByteArray> delivered()
    {
        const std::lock_guard guard(m_mutex);
        return m_delivered;
    }

private:
    struct Job
    {
        QByteArray body;
        Completion completion;
    };

    void run(unsigned seed)
    {
        std::mt19937 random(seed);
        std::unique_lock guard(m_mutex);
        while (true) {
            m_wake.wait(guard, [this] { return !m_jobs.empty() || m_finishing; });
            if (m_jobs.empty())
                return;
            const Job job = std::move(m_jobs.front());
            m_jobs.pop_front();
            const unsigned outcome = random() % 3;
            if (outcome == 0)
                m_delivered.push_back(job.body);
            guard.unlock();
            if (outcome == 2)
                job.completion({QStringLiteral("cut"), std::nullopt});
            else
                job.completion({std::nullopt, outcome == 0 ? 200 : 503});
            guard.lock();
        }
    }

    static constexpr unsigned threadCount = 4;

    std::mutex m_mutex;
    std::condition_variable m_wake;
    std::deque<Job> m_jobs;
    std::vector<QByteArray> m_delivered;
    bool m_finishing = false;
    std::vector<std::thread> m_threads;
};

TEST(AnalyticsStressTest, DeliversEveryEventOnceWhileUploadsFailOnOtherThreads)
{
    constexpr qint64 count = 3'000;
    const QTemporaryDir folder;
    UserDefaults defaults(folder.filePath(QStringLiteral("Quillo.conf")));
    defaults.setBoolean(DefaultsKeys::analyticsEnabled, true);
    FakeTimers timers;
    UnsteadyTransport transport;
    AnalyticsEnvironment environment;
    environment.serverEndpoint = QStringLiteral("https://collect.example/events");
    std::atomic<int> lines = 0;
    environment.printLine = [&](const QString&) { ++lines; };
    AnalyticsService service(defaults, timers, transport, environment);

    for (qint64 n = 1; n <= count; ++n) {
        service.trackEvent(EventType::zoom, {{QStringLiteral("n"), n}});
        EXPECT_TRUE(n % 100 != 0 || service.eventQueue().size() <= static_cast<std::size_t>(n));
    }
    transport.finish();

    std::vector<qint64> numbers;
    const auto collect = [&](const std::vector<AnalyticsEvent>& events) {
        for (const AnalyticsEvent& event : events)
            numbers.push_back(event.metadata.value(QStringLiteral("n")).toLongLong());
    };
    for (const QByteArray& body : transport.delivered())
        collect(analyticsBatchFromJson(parseJson(inflated(body))).events);
    collect(service.eventQueue());
    std::sort(numbers.begin(), numbers.end());
    ASSERT_EQ(numbers.size(), static_cast<std::size_t>(count)) << "lost or doubled";
    for (qint64 n = 1; n <= count; ++n)
        ASSERT_EQ(numbers[static_cast<std::size_t>(n - 1)], n);
    EXPECT_GT(lines, 0) << "some uploads must have failed";
}

} // namespace
} // namespace quillo
