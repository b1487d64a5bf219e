// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <QtGlobal>

#include <compare>

namespace pdf {

/// A range of a page's text in UTF-16 code units.
struct TextRange
{
    qsizetype location = 0;
    qsizetype length = 0;

    qsizetype end() const { return location + length; }
    friend bool operator==(TextRange, TextRange) = default;
};

/// A place between two characters of a document's text, or before the first or after the last of a page.
struct TextPosition
{
    /// Zero-based.
    int page = 0;
    /// Of the character that follows, in UTF-16 code units of the page's text.
    qsizetype index = 0;

    // NOLINTNEXTLINE(modernize-use-nullptr): taken for a comparison with zero
    friend auto operator<=>(TextPosition, TextPosition) = default;
};

} // namespace pdf
