// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "understanding/ScannedText.h"

#include <vector>

namespace quillo {

/// A digit with all digits around it.
struct DigitRun
{
    qsizetype start;
    qsizetype end;
    /// Digits, which are fewer than the units where some lie outside of the basic plane.
    qsizetype count;
};

/// The matches of one pattern, found from left to right.
class MatchList
{
public:
    /// Where the next match may begin: matches do not overlap.
    qsizetype limit() const { return m_ranges.empty() ? 0 : m_ranges.back().end; }
    void add(qsizetype start, qsizetype end) { m_ranges.push_back({start, end}); }
    const std::vector<TextRange>& ranges() const { return m_ranges; }

private:
    std::vector<TextRange> m_ranges;
};

// A scanner finds the matches of the patterns of one kind. It has any of the members
//     void atDigits(const ScannedText&, const DigitRun&);
//     void atColon(const ScannedText&, qsizetype);
//     void atAtSign(const ScannedText&, qsizetype);
// which are called for each such place in turn, and it knows from there how to find a match around the place.
// What a scanner finds is what a backtracking engine finds that tries every offset from left to right; each
// scanner says why, and why all of its calls together take time linear in the text.

/// Takes all scanners over the text in one pass.
template <typename... Scanners>
void scanPatterns(const ScannedText& text, Scanners&... scanners)
{
    qsizetype at = text.nextTrigger(0);
    while (at < text.size()) {
        const qsizetype start = at;
        qsizetype count = 0;
        while (const int length = text.digitAt(at)) {
            at += length;
            ++count;
        }
        if (count > 0) {
            const DigitRun run{start, at, count};
            const auto visit = [&](auto& scanner) {
                if constexpr (requires { scanner.atDigits(text, run); })
                    scanner.atDigits(text, run);
            };
            (visit(scanners), ...);
        } else {
            const auto visit = [&](auto& scanner) {
                if constexpr (requires { scanner.atColon(text, start); }) {
                    if (text.unit(start) == u':')
                        scanner.atColon(text, start);
                }
                if constexpr (requires { scanner.atAtSign(text, start); }) {
                    if (text.unit(start) == u'@')
                        scanner.atAtSign(text, start);
                }
            };
            (visit(scanners), ...);
            ++at;
        }
        at = text.nextTrigger(at);
    }
}

} // namespace quillo
