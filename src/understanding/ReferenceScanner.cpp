// SPDX-License-Identifier: AGPL-3.0-or-later
#include "understanding/ReferenceScanner.h"

#include "understanding/FoldedLiteral.h"

namespace quillo {
namespace {

constexpr qsizetype nowhere = ScannedText::nowhere;

// No literal of a table ends with another one, so at most one of them ends at any place.
constexpr std::string_view nounWords[] = {"invoice", "reference",    "order",
                                          "account", "confirmation", "tracking"};
constexpr std::string_view labelWords[] = {"number", "#", "no", "no."};
constexpr std::string_view prefixWords[] = {"inv", "ref", "ord", "acc", "cnf", "trk"};
constexpr LiteralTable nouns(nounWords);
constexpr LiteralTable labels(labelWords);
constexpr LiteralTable prefixes(prefixWords);
constexpr qsizetype fewestDigits = 6;

/// [A-Z0-9\-] and what is equal to one of these but for its case.
bool isCodeUnit(char16_t unit)
{
    return (unit >= u'A' && unit <= u'Z') || (unit >= u'a' && unit <= u'z') ||
           (unit >= u'0' && unit <= u'9') || unit == u'-' ||
           (unit >= 0x80 && foldedToAscii(unit).size() == 1);
}

} // namespace

void ReferenceScanner::atColon(const ScannedText& text, qsizetype colon)
{
    const qsizetype label = labels.before(text, colon);
    if (label == nowhere)
        return;
    const qsizetype start = nouns.before(text, text.beforeSpaces(label));
    // The code of the match before may be the noun that stands here.
    if (start == nowhere || start < matches[0].limit())
        return;
    const qsizetype code = text.afterSpaces(colon + 1);
    qsizetype end = code;
    while (isCodeUnit(text.unit(end)))
        ++end;
    if (end != code)
        matches[0].add(start, end);
}

void ReferenceScanner::atDigits(const ScannedText& text, const DigitRun& run)
{
    if (run.count < fewestDigits)
        return;
    const bool separated = text.unit(run.start - 1) == u'-' || text.isSpace(run.start - 1);
    const qsizetype start = prefixes.before(text, separated ? run.start - 1 : run.start);
    if (start != nowhere)
        matches[1].add(start, run.end);
}

} // namespace quillo
