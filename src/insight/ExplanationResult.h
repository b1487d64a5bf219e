// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <QString>

#include <optional>

namespace quillo {

/// A selected passage, read in plainer words.
struct ExplanationResult
{
    /// The passage, unchanged.
    QString originalText;
    QString explanation;
    /// The passage with legal phrases replaced; the explainer always sets it, views show nothing without it.
    std::optional<QString> simplified;
};

} // namespace quillo
