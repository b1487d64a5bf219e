// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <QStringView>

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace quillo {

/// Finds all occurrences of many keywords in one pass over a text: the automaton of Aho and Corasick
/// ("Efficient string matching: an aid to bibliographic search", 1975) with every transition filled in, so
/// that each code unit of the text costs one look-up whatever the keywords are.
///
/// The text is read as if it had been lower-cased first, by the full mappings of Unicode and without a
/// language. No copy is made for that: keywords are ASCII, and besides A to Z only two characters become
/// ASCII when lower-cased, the Kelvin sign (k) and the dotted capital I (i and a combining dot, the only
/// lower-casing of Unicode that changes the number of UTF-16 units).
///
/// Unchangeable once made, so any number of threads may search with it.
class KeywordAutomaton
{
public:
    /// Keywords are lower-case ASCII and not empty.
    explicit KeywordAutomaton(std::span<const QStringView> keywords);

    /// Calls `visit(keyword, end)` for every occurrence of every keyword, overlapping ones included, in the
    /// order in which they end. `keyword` is the index in the list given at construction, `end` the UTF-16
    /// offset after the occurrence in the lower-cased copy of the text.
    template <typename Visit>
    void search(QStringView text, Visit&& visit) const
    {
        State state = 0;
        qsizetype end = 0;
        const auto step = [&](char16_t unit) {
            ++end;
            state = m_next[state + (unit < m_symbols.size() ? m_symbols[unit] : otherSymbol)];
            if (state >= m_firstFinalState) {
                for (std::uint32_t keyword :
                     m_keywordsOfFinalState[(state - m_firstFinalState) / m_symbolCount])
                    visit(keyword, end);
            }
        };
        for (const QChar character : text) {
            const char16_t unit = character.unicode();
            if (unit == capitalIWithDot) {
                step(u'i');
                step(combiningDotAbove);
            } else {
                step(unit == kelvinSign ? u'k' : unit);
            }
        }
    }

    /// For each keyword the offset after its first occurrence, as search() counts it, or nothing.
    std::vector<std::optional<qsizetype>> firstEnds(QStringView text) const;

private:
    /// A state's place in the table of transitions: its number times the number of symbols.
    using State = std::uint32_t;

    static constexpr std::uint8_t otherSymbol = 0;
    static constexpr char16_t capitalIWithDot = 0x0130;
    static constexpr char16_t combiningDotAbove = 0x0307;
    static constexpr char16_t kelvinSign = 0x212A;

    /// The keywords' own characters are numbered from 1, upper and lower case alike; all others are symbol 0.
    std::array<std::uint8_t, 128> m_symbols{};
    std::uint32_t m_symbolCount = 1;
    std::size_t m_keywordCount;
    std::vector<State> m_next;
    /// States in which a keyword ends are numbered last.
    State m_firstFinalState = 0;
    std::vector<std::vector<std::uint32_t>> m_keywordsOfFinalState;
};

} // namespace quillo
