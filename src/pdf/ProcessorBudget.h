// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "pdf/ThreadClock.h"

#include <chrono>

namespace pdf {

/// What the calling thread may spend on a document altogether, from construction to destruction, besides what
/// each operation of the engine may spend by itself: an operation that would exceed it fails. What counts is
/// the thread's processor time, so neither a busy machine nor a slow disk nor another thread takes anything
/// away. Budgets do not nest.
class ProcessorBudget
{
public:
    explicit ProcessorBudget(std::chrono::nanoseconds time);
    ~ProcessorBudget();
    ProcessorBudget(const ProcessorBudget&) = delete;
    ProcessorBudget& operator=(const ProcessorBudget&) = delete;

    /// The budget of the calling thread, or null.
    static const ProcessorBudget* current();

    /// When it is spent, in the thread's processor time.
    std::chrono::nanoseconds end() const { return m_end; }

    /// For the thread that made it. Once true, it stays so.
    bool isSpent() const { return m_clock.now() >= m_end; }

private:
    const ThreadClock m_clock;
    const std::chrono::nanoseconds m_end;
};

} // namespace pdf
