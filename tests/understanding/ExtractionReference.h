// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "insight/ExtractedItem.h"

#include <QStringView>

#include <cstdint>
#include <span>
#include <vector>

namespace quillo::reference {

/// One kind of datum and its patterns, in ICU's syntax, in the order in which they are applied.
struct Kind
{
    ExtractedItem::ItemType type;
    bool caseInsensitive;
    double confidence;
    std::span<const char16_t* const> patterns;
};

/// In the order in which a page's items are listed.
std::span<const Kind> kinds();

/// The extractor in its plainest form: ICU's matches of one pattern after another. Patterns are compiled once
/// in a process. The stack limit is lifted, so a long run costs memory instead of items.
std::vector<ExtractedItem> extractItems(const Kind& kind, QStringView text, std::int64_t pageNumber);
std::vector<ExtractedItem> extractItems(QStringView text, std::int64_t pageNumber);

} // namespace quillo::reference
