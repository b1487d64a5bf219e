// SPDX-License-Identifier: AGPL-3.0-or-later
#include "understanding/PhoneScanner.h"

#include <algorithm>

namespace quillo {
namespace {

constexpr qsizetype nowhere = ScannedText::nowhere;

// In these patterns an optional part is never left out where it stands in the text: what follows it could not
// begin there. The digit 1 alone can also be the first digit of the number.

qsizetype afterSeparator(const ScannedText& text, qsizetype at)
{
    return text.unit(at) == u'-' || text.isSpace(at) ? at + 1 : at;
}

/// After `\)?[\s\-]?`.
qsizetype afterAreaEnd(const ScannedText& text, qsizetype at)
{
    return afterSeparator(text, text.unit(at) == u')' ? at + 1 : at);
}

/// After `\s?\(?(\d{3})\)?[\s\-]?(\d{3})[\s\-]?(\d{4})`.
qsizetype afterTenDigits(const ScannedText& text, qsizetype at)
{
    if (text.isSpace(at))
        ++at;
    if (text.unit(at) == u'(')
        ++at;
    at = text.afterDigits(at, 3);
    if (at != nowhere)
        at = text.afterDigits(afterAreaEnd(text, at), 3);
    if (at != nowhere)
        at = text.afterDigits(afterSeparator(text, at), 4);
    return at;
}

qsizetype afterNational(const ScannedText& text, qsizetype at)
{
    if (text.unit(at) == u'+')
        ++at;
    if (text.unit(at) == u'1') {
        if (const qsizetype end = afterTenDigits(text, at + 1); end != nowhere)
            return end;
    }
    return afterTenDigits(text, at);
}

/// The offset of what of `\+?1?\s?\(?` stands before the offset.
qsizetype beforeNationalPrefix(const ScannedText& text, qsizetype at)
{
    if (text.unit(at - 1) == u'(')
        --at;
    if (text.isSpace(at - 1))
        --at;
    if (text.unit(at - 1) == u'1')
        --at;
    if (text.unit(at - 1) == u'+')
        --at;
    return at;
}

/// After `44\s?\d{4}\s?\d{6}`.
qsizetype afterBritish(const ScannedText& text, qsizetype at)
{
    if (text.unit(at) != u'4' || text.unit(at + 1) != u'4')
        return nowhere;
    at += 2;
    at = text.afterDigits(text.isSpace(at) ? at + 1 : at, 4);
    if (at != nowhere)
        at = text.afterDigits(text.isSpace(at) ? at + 1 : at, 6);
    return at;
}

} // namespace

void PhoneScanner::atDigits(const ScannedText& text, const DigitRun& run)
{
    findNational(text, run);
    findBritish(text, run);
    findParenthesised(text, run);
}

/// The first three digits lie in one run. From ten digits on a run holds a number wherever ten are left; a
/// shorter one has to go on behind a separator. So few offsets are tried in vain.
void PhoneScanner::findNational(const ScannedText& text, const DigitRun& run)
{
    if (run.count < 3)
        return;
    if (run.count < 10) {
        const qsizetype next = afterAreaEnd(text, run.end);
        if (next == run.end || !text.digitAt(next))
            return;
    }
    MatchList& list = matches[0];
    qsizetype at = std::max(beforeNationalPrefix(text, run.start), list.limit());
    while (at < run.end) {
        const qsizetype end = afterNational(text, at);
        if (end != nowhere) {
            list.add(at, end);
            at = end;
        } else {
            at += std::max(text.digitAt(at), 1);
        }
    }
}

void PhoneScanner::findBritish(const ScannedText& text, const DigitRun& run)
{
    if (run.count < 12 && !text.isSpace(run.end))
        return;
    MatchList& list = matches[1];
    qsizetype at = std::max(run.start, list.limit());
    while (at < run.end) {
        const qsizetype end = afterBritish(text, at);
        if (end != nowhere) {
            const bool plus = at == run.start && text.unit(at - 1) == u'+';
            list.add(plus ? at - 1 : at, end);
            at = end;
        } else {
            at += text.digitAt(at);
        }
    }
}

void PhoneScanner::findParenthesised(const ScannedText& text, const DigitRun& run)
{
    if (run.count != 3 || text.unit(run.start - 1) != u'(' || text.unit(run.end) != u')')
        return;
    qsizetype at = run.end + 1;
    at = text.afterDigits(text.isSpace(at) ? at + 1 : at, 3);
    if (at == nowhere || text.unit(at) != u'-')
        return;
    if (const qsizetype end = text.afterDigits(at + 1, 4); end != nowhere)
        matches[2].add(run.start - 1, end);
}

} // namespace quillo
