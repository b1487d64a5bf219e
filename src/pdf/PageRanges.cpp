// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/PageRanges.h"

#include <QList>

#include <algorithm>
#include <optional>

namespace pdf {
namespace {

/// A page number from 1 on; numbers beyond the last page all become the one behind it.
std::optional<int> pageNumber(QStringView text, int pageCount)
{
    const auto isDigit = [](QChar character) { return character >= u'0' && character <= u'9'; };
    if (text.isEmpty() || !std::all_of(text.begin(), text.end(), isDigit))
        return std::nullopt;
    qint64 number = 0;
    for (const QChar digit : text)
        number = std::min<qint64>(number * 10 + digit.unicode() - u'0', qint64{pageCount} + 1);
    return number == 0 ? std::nullopt : std::optional(static_cast<int>(number));
}

/// Appends the pages of one range, or tells what is wrong with it.
std::optional<WrongPageRange::Reason> appendRange(QStringView range, int pageCount, std::vector<int>& pages)
{
    const auto isDash = [](QChar character) { return character == u'-' || character == QChar(0x2013); };
    const auto* const dash = std::find_if(range.begin(), range.end(), isDash);
    const QStringView left = range.left(dash - range.begin()).trimmed();
    std::optional<int> first = pageNumber(left, pageCount);
    std::optional<int> last = first;
    if (dash != range.end()) {
        const QStringView right = range.mid(dash - range.begin() + 1).trimmed();
        if (left.isEmpty() && right.isEmpty())
            return WrongPageRange::Reason::notARange;
        if (left.isEmpty())
            first = 1;
        last = right.isEmpty() && first ? std::max(*first, pageCount) : pageNumber(right, pageCount);
    }
    if (!first || !last)
        return WrongPageRange::Reason::notARange;
    if (std::max(*first, *last) > pageCount)
        return WrongPageRange::Reason::beyondLastPage;
    const int step = *first <= *last ? 1 : -1;
    for (int number = *first; number != *last + step; number += step)
        pages.push_back(number - 1);
    return std::nullopt;
}

} // namespace

std::variant<std::vector<int>, WrongPageRange> parsePageRanges(QStringView text, int pageCount)
{
    std::vector<int> pages;
    for (const QStringView part : text.split(u',')) {
        const QStringView range = part.trimmed();
        if (const auto reason = appendRange(range, pageCount, pages))
            return WrongPageRange{range.toString(), *reason};
    }
    return pages;
}

} // namespace pdf
