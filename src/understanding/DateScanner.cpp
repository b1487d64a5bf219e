// SPDX-License-Identifier: AGPL-3.0-or-later
#include "understanding/DateScanner.h"

#include "understanding/FoldedLiteral.h"
#include "understanding/MonthNames.h"

namespace quillo {
namespace {

constexpr qsizetype nowhere = ScannedText::nowhere;

/// No month's name begins or ends with another's, so at most one of them matches at any place.
constexpr LiteralTable months(monthNames);

/// After `\s+\d{4}`, or nowhere.
qsizetype afterSpacesAndYear(const ScannedText& text, qsizetype at)
{
    return text.isSpace(at) ? text.afterDigits(text.afterSpaces(at + 1), 4) : nowhere;
}

} // namespace

void DateScanner::atDigits(const ScannedText& text, const DigitRun& run)
{
    const char16_t next = text.unit(run.end);
    if (next == u'/') {
        findSlashed(text, run);
    } else if (next == u'-') {
        findHyphened(text, run);
    } else if (next == u',') {
        findMonthFirst(text, run);
    } else if (ScannedText::isSpaceUnit(next)) {
        findMonthFirst(text, run);
        findDayFirst(text, run);
    }
}

/// The slash fixes the digits before it: the last two, or one where there are no two to take.
void DateScanner::findSlashed(const ScannedText& text, const DigitRun& run)
{
    MatchList& list = matches[slashed];
    qsizetype at = text.afterDigits(run.end + 1, 1);
    if (at == nowhere)
        return;
    at += text.digitAt(at);
    if (text.unit(at) != u'/')
        return;
    const qsizetype end = text.afterDigits(at + 1, 4);
    const qsizetype start = text.beforeDigits(run.end, 2, list.limit());
    if (end != nowhere && start != run.end)
        list.add(start, end);
}

/// The day has white space before it and white space or a comma behind it, so it is all digits of its run.
void DateScanner::findMonthFirst(const ScannedText& text, const DigitRun& run)
{
    if (run.count > 2 || !text.isSpace(run.start - 1))
        return;
    const qsizetype end = afterSpacesAndYear(text, text.unit(run.end) == u',' ? run.end + 1 : run.end);
    if (end == nowhere)
        return;
    // An earlier match ends with the digits of its year and cannot reach into the month.
    const qsizetype start = months.before(text, text.beforeSpaces(run.start));
    if (start != nowhere)
        matches[monthFirst].add(start, end);
}

void DateScanner::findDayFirst(const ScannedText& text, const DigitRun& run)
{
    MatchList& list = matches[dayFirst];
    const qsizetype start = text.beforeDigits(run.end, 2, list.limit());
    if (start == run.end)
        return;
    const qsizetype monthEnd = months.after(text, text.afterSpaces(run.end));
    if (monthEnd == nowhere)
        return;
    if (const qsizetype end = afterSpacesAndYear(text, monthEnd); end != nowhere)
        list.add(start, end);
}

void DateScanner::findHyphened(const ScannedText& text, const DigitRun& run)
{
    MatchList& list = matches[hyphened];
    const qsizetype monthEnd = text.afterDigits(run.end + 1, 2);
    if (monthEnd == nowhere || text.unit(monthEnd) != u'-')
        return;
    const qsizetype end = text.afterDigits(monthEnd + 1, 2);
    const qsizetype start = text.beforeDigits(run.end, 4, list.limit());
    if (end != nowhere && text.afterDigits(start, 4) == run.end)
        list.add(start, end);
}

} // namespace quillo
