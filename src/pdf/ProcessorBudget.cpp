// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/ProcessorBudget.h"

namespace pdf {
namespace {

thread_local const ProcessorBudget* currentBudget = nullptr;

} // namespace

ProcessorBudget::ProcessorBudget(std::chrono::nanoseconds time)
    : m_end(m_clock.now() + time)
{
    currentBudget = this;
}

ProcessorBudget::~ProcessorBudget()
{
    currentBudget = nullptr;
}

const ProcessorBudget* ProcessorBudget::current()
{
    return currentBudget;
}

} // namespace pdf
