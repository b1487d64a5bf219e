// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "pdf/CompactText.h"
#include "pdf/TextRange.h"

#include <QFlags>
#include <QString>

#include <array>
#include <string>
#include <vector>

namespace pdf {

class CaseFolding;

/// How to search.
enum class FindOption {
    /// Upper and lower case are the same, by full Unicode case folding.
    caseInsensitive = 0x1,
};
Q_DECLARE_FLAGS(FindOptions, FindOption)
Q_DECLARE_OPERATORS_FOR_FLAGS(FindOptions)

/// A text to be searched for.
///
/// White space in the pattern stands for any run of white space, line breaks included. Composed and
/// decomposed letters are the same, while a letter with a mark is another one than the letter alone. Soft
/// hyphens do not count, and a word that was divided by a hyphen at the end of a line is also found
/// undivided. A match never begins or ends within a character of the searched text.
class TextPattern
{
public:
    TextPattern(const QString& text, FindOptions options);

    /// True where there is nothing to search for; such a pattern has no matches.
    bool isEmpty() const { return m_units.empty(); }

    /// Where the pattern matches in the text, from its start to its end and without overlaps. Takes time in
    /// proportion to the text, whatever the pattern.
    std::vector<TextRange> matches(const CompactText& text) const;

private:
    template <typename View>
    friend class TextScan;

    const CaseFolding& m_folding;
    std::u32string m_units;
    /// The Knuth-Morris-Pratt table: how much of the pattern still matches when it does not go on.
    std::vector<std::size_t> m_fallback;
    /// Which characters of Latin-1 can begin a match.
    std::array<bool, 256> m_canBegin = {};
};

} // namespace pdf
