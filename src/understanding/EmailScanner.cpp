// SPDX-License-Identifier: AGPL-3.0-or-later
#include "understanding/EmailScanner.h"

namespace quillo {
namespace {

constexpr qsizetype nowhere = ScannedText::nowhere;
constexpr qsizetype shortestTop = 2;

bool isLetter(char16_t unit)
{
    return (unit >= u'A' && unit <= u'Z') || (unit >= u'a' && unit <= u'z');
}

bool isHostUnit(char16_t unit)
{
    return isLetter(unit) || (unit >= u'0' && unit <= u'9') || unit == u'.' || unit == u'-';
}

bool isLocalUnit(char16_t unit)
{
    return isHostUnit(unit) || unit == u'_' || unit == u'%' || unit == u'+';
}

/// The vertical bar belongs to the class of the last part.
bool isTopUnit(char16_t unit)
{
    return isLetter(unit) || unit == u'|';
}

/// After `[A-Za-z0-9.-]+\.[A-Z|a-z]{2,}`: the class takes all it can, so the last full stop counts that has
/// something before it and enough behind it.
qsizetype afterHost(const ScannedText& text, qsizetype start)
{
    qsizetype best = nowhere;
    qsizetype at = start;
    while (isHostUnit(text.unit(at))) {
        if (text.unit(at) != u'.' || at == start) {
            ++at;
            continue;
        }
        const qsizetype top = at + 1;
        for (at = top; isTopUnit(text.unit(at));)
            ++at;
        if (at - top >= shortestTop)
            best = at;
        // A bar is not the host's, which ends before it then.
        if (text.view().mid(top, at - top).contains(u'|'))
            break;
    }
    return best;
}

} // namespace

void EmailScanner::atAtSign(const ScannedText& text, qsizetype sign)
{
    MatchList& list = matches[0];
    const qsizetype limit = list.limit();
    if (sign == limit || !isLocalUnit(text.unit(sign - 1)))
        return;
    const qsizetype end = afterHost(text, sign + 1);
    if (end == nowhere)
        return;
    qsizetype start = sign - 1;
    while (start > limit && isLocalUnit(text.unit(start - 1)))
        --start;
    list.add(start, end);
}

} // namespace quillo
