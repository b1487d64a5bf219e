// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "understanding/ScannedText.h"

#include <array>
#include <cstddef>
#include <span>
#include <string_view>

namespace quillo {

/// The ASCII letters that a character above ASCII stands for when case is ignored, by Unicode's full case
/// folding; empty when its folding holds anything else. The long s, the Kelvin sign, the sharp s and the
/// Latin ligatures have such letters, no other character has.
std::string_view foldedToAscii(char16_t unit);

/// Matches lower-case ASCII at an offset without regard to case, and gives the offset after it or `nowhere`.
/// A character that stands for several letters has to be matched as a whole: "Street" is found in "ﬆreet",
/// but "Ref" is not found in "Reﬀ".
qsizetype afterLiteral(const ScannedText& text, qsizetype at, std::string_view literal);

/// The same backwards: the offset at which a match of the literal begins that ends at `at`, or `nowhere`.
qsizetype beforeLiteral(const ScannedText& text, qsizetype at, std::string_view literal);

/// Literals of lower-case ASCII, of which the first in their order counts that matches. Most places of a text
/// are done with at one look.
class LiteralTable
{
public:
    /// The literals must outlive the table.
    template <std::size_t count>
    explicit constexpr LiteralTable(const std::string_view (&literals)[count])
        : m_literals(literals)
    {
        for (const std::string_view literal : literals) {
            admit(m_first, literal.front());
            admit(m_last, literal.back());
        }
    }

    qsizetype after(const ScannedText& text, qsizetype at) const
    {
        return isIn(m_first, text.unit(at)) ? afterAny(text, at) : ScannedText::nowhere;
    }

    qsizetype before(const ScannedText& text, qsizetype at) const
    {
        return isIn(m_last, text.unit(at - 1)) ? beforeAny(text, at) : ScannedText::nowhere;
    }

private:
    using AsciiSet = std::array<bool, 128>;

    static constexpr void admit(AsciiSet& set, char character)
    {
        const bool letter = character >= 'a' && character <= 'z';
        const char upper = letter ? static_cast<char>(character - 'a' + 'A') : character;
        set[static_cast<std::size_t>(character)] = true;
        set[static_cast<std::size_t>(upper)] = true;
    }
    static bool isIn(const AsciiSet& set, char16_t unit) { return unit >= set.size() || set[unit]; }

    qsizetype afterAny(const ScannedText& text, qsizetype at) const;
    qsizetype beforeAny(const ScannedText& text, qsizetype at) const;

    std::span<const std::string_view> m_literals;
    /// The characters with which a match may begin and end; those above ASCII always may.
    AsciiSet m_first{};
    AsciiSet m_last{};
};

} // namespace quillo
