// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringView>

#include <variant>
#include <vector>

namespace pdf {

/// The part of a text that names no pages, and why.
struct WrongPageRange
{
    enum class Reason {
        /// It is neither a page number from 1 on nor a range of them.
        notARange,
        /// It goes beyond the last page.
        beyondLastPage,
    };

    /// Without the white space around it; empty where nothing stands between two commas.
    QString part;
    Reason reason = Reason::notARange;
};

/// The zero-based pages that a text such as "1-3, 5, 8-" names, in its order: "5, 1-2" is 5, 1, 2 and "3-1"
/// is 3, 2, 1. A range without a beginning starts at the first page, one without an end goes to the last.
/// Where a part of the text names no pages of the document, the first such part and no pages.
std::variant<std::vector<int>, WrongPageRange> parsePageRanges(QStringView text, int pageCount);

} // namespace pdf
