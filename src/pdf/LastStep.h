// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "pdf/Engine.h"

#include <optional>

namespace pdf::engine {

/// Attempts the last step of a change: an operation that is stopped at its end has an error and is done all
/// the same.
template <typename Work>
std::optional<PDFError> attemptLastStep(CookieScope& scope, Work work)
{
    bool isDone = false;
    auto error = attempt(scope, [&](fz_context* ctx) {
        work(ctx);
        isDone = true;
    });
    return isDone ? std::nullopt : error;
}

} // namespace pdf::engine
