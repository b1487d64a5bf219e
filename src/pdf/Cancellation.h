// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <chrono>
#include <memory>

namespace pdf {

/// A shared flag by which one thread tells another that a result is no longer wanted, with an optional
/// deadline. Copies share the flag. Safe from any thread.
class Cancellation
{
public:
    /// Not cancelled until somebody cancels it.
    Cancellation();

    /// Cancels itself when the time is over.
    static Cancellation after(std::chrono::milliseconds time);

    void cancel() const;

    /// True after cancel() and after the deadline.
    bool isCancelled() const;

private:
    friend class CookieScope;
    struct State;
    std::shared_ptr<State> m_state;
};

} // namespace pdf
