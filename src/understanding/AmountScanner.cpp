// SPDX-License-Identifier: AGPL-3.0-or-later
#include "understanding/AmountScanner.h"

#include <algorithm>
#include <iterator>

namespace quillo {
namespace {

constexpr qsizetype nowhere = ScannedText::nowhere;

constexpr char16_t signs[] = {u'$', u'£', u'€'};
constexpr std::size_t beforeCode = std::size(signs);
constexpr QStringView codes[] = {u"USD", u"EUR", u"GBP", u"CAD", u"AUD"};
constexpr qsizetype codeLength = 3;

/// After `\d{1,3}(,\d{3})*(\.\d{2})?`, taken as far as it goes; there is a digit at the offset.
qsizetype afterNumber(const ScannedText& text, qsizetype at)
{
    for (int digits = 0; digits < 3; ++digits)
        at += text.digitAt(at);
    while (text.unit(at) == u',') {
        const qsizetype end = text.afterDigits(at + 1, 3);
        if (end == nowhere)
            break;
        at = end;
    }
    if (text.unit(at) == u'.') {
        if (const qsizetype end = text.afterDigits(at + 1, 2); end != nowhere)
            return end;
    }
    return at;
}

/// The offset of the sign and digit before a group of exactly so many digits that ends at the offset.
qsizetype beforeGroup(const ScannedText& text, qsizetype at, char16_t sign, int digits)
{
    const qsizetype start = text.beforeDigits(at, digits, 0);
    const bool complete = text.afterDigits(start, digits) == at;
    return complete && text.unit(start - 1) == sign && text.digitBefore(start - 1) ? start - 1 : nowhere;
}

/// The leftmost offset from which `\d{1,3}(,\d{3})*|\d+` can reach the offset, before which there is a digit.
/// Groups reach further to the left than digits alone wherever there is a comma to cross; the first group has
/// up to three digits, however many stand there.
qsizetype beforeWholeNumber(const ScannedText& text, qsizetype at)
{
    bool grouped = false;
    for (qsizetype comma = beforeGroup(text, at, u',', 3); comma != nowhere;
         comma = beforeGroup(text, at, u',', 3)) {
        at = comma;
        grouped = true;
    }
    return grouped ? text.beforeDigits(at, 3, 0) : text.beforeAllDigits(at, 0);
}

} // namespace

void AmountScanner::atDigits(const ScannedText& text, const DigitRun& run)
{
    findAfterSign(text, run);
    findBeforeCode(text, run);
}

void AmountScanner::findAfterSign(const ScannedText& text, const DigitRun& run)
{
    const qsizetype at = text.isSpace(run.start - 1) ? run.start - 2 : run.start - 1;
    const auto sign = std::ranges::find(signs, text.unit(at));
    if (sign != std::end(signs))
        matches[static_cast<std::size_t>(sign - signs)].add(at, afterNumber(text, run.start));
}

/// From wherever a match begins, the code that ends it is the first letter behind; so for each code the
/// leftmost beginning is the match. Earlier matches end with letters, which no number reaches across.
void AmountScanner::findBeforeCode(const ScannedText& text, const DigitRun& run)
{
    const qsizetype code = text.isSpace(run.end) ? run.end + 1 : run.end;
    const char16_t first = text.unit(code);
    if (first < u'A' || first > u'U' ||
        std::ranges::find(codes, text.view().mid(code, codeLength)) == std::end(codes))
        return;
    const qsizetype point = beforeGroup(text, run.end, u'.', 2);
    const qsizetype start = beforeWholeNumber(text, point == nowhere ? run.end : point);
    matches[beforeCode].add(start, code + codeLength);
}

} // namespace quillo
