// SPDX-License-Identifier: AGPL-3.0-or-later
#include "cli/PageNumbers.h"

#include <QCoreApplication>
#include <QStringList>

namespace quillo::cli {
namespace {

constexpr qsizetype maximumRanges = 50;

} // namespace

QString pageNumbers(const std::vector<std::int64_t>& pages)
{
    QStringList ranges;
    std::size_t first = 0;
    while (first < pages.size() && ranges.size() < maximumRanges) {
        std::size_t last = first;
        while (last + 1 < pages.size() && pages[last + 1] == pages[last] + 1)
            ++last;
        QString range = QString::number(pages[first] + 1);
        if (last > first)
            range += u'-' + QString::number(pages[last] + 1);
        ranges.append(range);
        first = last + 1;
    }
    QString text = ranges.join(QStringLiteral(", "));
    if (first < pages.size())
        text += QCoreApplication::translate("quillo::cli", " and %1 more").arg(pages.size() - first);
    return text;
}

} // namespace quillo::cli
