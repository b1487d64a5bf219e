// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "analytics/AnalyticsTransport.h"

#include <mutex>
#include <thread>
#include <vector>

namespace quillo {

/// Carries analytics requests over HTTPS, on a thread of its own that starts with the first request, so that
/// they go out also while the main thread waits. Certificates are verified, redirects are answers like any
/// other, and nothing is kept or told that would let a server recognise the user: no cookies, no cache, no
/// credentials, no language, no version of anything. Qt's default TLS configuration says which authorities
/// are trusted.
class NetworkTransport : public AnalyticsTransport
{
public:
    NetworkTransport();
    /// Drops what is on its way, without completing it.
    ~NetworkTransport() override;

    /// Completes on the transport's thread. An error of the timeout reads "The request timed out."
    void post(const AnalyticsRequest& request, Completion completion) override;

private:
    struct Job
    {
        AnalyticsRequest request;
        Completion completion;
    };

    class Worker;

    /// The network's thread.
    void run();
    /// Takes what has come so far, and tells whether it is time to end.
    std::vector<Job> takeJobs(bool& stopping);

    std::mutex m_mutex;
    std::vector<Job> m_jobs;
    bool m_stopping = false;
    /// There while the thread has its event loop.
    Worker* m_worker = nullptr;
    std::thread m_thread;
};

} // namespace quillo
