// SPDX-License-Identifier: AGPL-3.0-or-later
#include "understanding/AddressScanner.h"

#include "understanding/FoldedLiteral.h"

#include <algorithm>

namespace quillo {
namespace {

constexpr qsizetype nowhere = ScannedText::nowhere;

/// Of those that match at one place the first in this order is taken.
constexpr std::string_view streetWordsInOrder[] = {
    "street", "st", "avenue", "ave", "road",  "rd", "boulevard", "blvd",
    "lane",   "ln", "drive",  "dr",  "court", "ct", "way",
};
constexpr LiteralTable streetWords(streetWordsInOrder);

/// [A-Za-z\s] and what is equal to one of these but for its case.
bool isLetterOrSpace(char16_t unit)
{
    return (unit >= u'a' && unit <= u'z') || (unit >= u'A' && unit <= u'Z') ||
           ScannedText::isSpaceUnit(unit) || (unit >= 0x80 && foldedToAscii(unit).size() == 1);
}

} // namespace

/// `\s+` and the class both take all they can and give back one by one, so the street word is the one that
/// begins last within the run or, with a ligature as its first letter, right behind it. Before it there are
/// at least two characters, the first of them white space; where white space alone is left for both, it is
/// two.
void AddressScanner::atDigits(const ScannedText& text, const DigitRun& run)
{
    if (!text.isSpace(run.end))
        return;
    const qsizetype letters = text.afterSpaces(run.end);
    qsizetype runEnd = letters;
    while (isLetterOrSpace(text.unit(runEnd)))
        ++runEnd;
    const qsizetype first = std::max(letters, run.end + 2);
    for (qsizetype at = runEnd; at >= first; --at) {
        const qsizetype end = streetWords.after(text, at);
        if (end == nowhere)
            continue;
        matches[0].add(run.start, text.unit(end) == u'.' ? end + 1 : end);
        return;
    }
}

} // namespace quillo
