// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <chrono>
#include <ctime>

namespace pdf {

/// The processor time of the thread that makes it, to be read by any other as long as that thread runs.
class ThreadClock
{
public:
    ThreadClock();

    std::chrono::nanoseconds now() const;

private:
    clockid_t m_clock;
};

} // namespace pdf
