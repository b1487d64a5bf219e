// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/Cancellation.h"

#include "pdf/CancellationState.h"
#include "pdf/CookieScope.h"

namespace pdf {

Cancellation::Cancellation()
    : m_state(std::make_shared<State>())
{}

Cancellation Cancellation::after(std::chrono::milliseconds time)
{
    Cancellation cancellation;
    cancellation.m_state->deadline = std::chrono::steady_clock::now() + time;
    return cancellation;
}

void Cancellation::cancel() const
{
    m_state->cancel();
}

void Cancellation::State::cancel()
{
    const std::lock_guard lock(mutex);
    cancelled = true;
    for (CookieScope* scope : scopes)
        scope->stop();
}

bool Cancellation::isCancelled() const
{
    return m_state->cancelled ||
           (m_state->deadline && std::chrono::steady_clock::now() >= *m_state->deadline);
}

} // namespace pdf
