// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <csignal>
#include <cstdio>

namespace quillo {

/// How several programs that a test runs begin at once: each says "ready" and waits for SIGUSR1, which the
/// test sends when it has heard all of them. To be made before other threads are.
class StartSignal
{
public:
    StartSignal()
    {
        sigemptyset(&m_signals);
        sigaddset(&m_signals, SIGUSR1);
        // One that comes early waits, too.
        sigprocmask(SIG_BLOCK, &m_signals, nullptr);
    }

    void wait() const
    {
        std::puts("ready");
        std::fflush(stdout);
        int signal = 0;
        sigwait(&m_signals, &signal);
    }

private:
    sigset_t m_signals = {};
};

} // namespace quillo
