// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/Cancellation.h"

#include "pdf/CancellationState.h"
#include "pdf/CookieScope.h"

#include <algorithm>

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

Cancellation Cancellation::limitedTo(std::chrono::milliseconds time) const
{
    Cancellation child = after(time);
    auto& deadline = child.m_state->deadline;
    deadline = std::min(*deadline, m_state->deadline.value_or(*deadline));
    const std::lock_guard lock(m_state->mutex);
    std::erase_if(m_state->children, [](const auto& other) { return other.expired(); });
    m_state->children.push_back(child.m_state);
    child.m_state->cancelled = m_state->cancelled.load();
    return child;
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
    for (const auto& child : children) {
        if (const auto state = child.lock())
            state->cancel();
    }
}

bool Cancellation::isCancelled() const
{
    return m_state->cancelled ||
           (m_state->deadline && std::chrono::steady_clock::now() >= *m_state->deadline);
}

} // namespace pdf
