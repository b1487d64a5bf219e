// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <QString>

#include <span>

namespace quillo {

/// A kind of text that drives a backtracking engine into quadratic time, or a test of the same for others.
struct HostileShape
{
    const char* name;
    /// Makes a text of exactly so many UTF-16 units.
    QString (*text)(qsizetype size);
    /// Whether the text is full of items.
    bool manyItems;
};

std::span<const HostileShape> hostileShapes();

} // namespace quillo
