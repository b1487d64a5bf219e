// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "document/PageText.h"
#include "insight/ExtractedItem.h"
#include "understanding/ScannedText.h"

#include <QString>
#include <QStringView>

#include <cstdint>
#include <vector>

namespace quillo {

// Finds dates, amounts, reference numbers, e-mail addresses, telephone numbers and street addresses by fixed
// patterns, which each scanner's header shows. They mean what ICU's regular expressions mean by them (Unicode
// digits, white space and case folding, the first alternative that leads to a match, no match overlapping the
// one before), and the items are those that a loop over ICU's matches gives, on any sequence of UTF-16 units.
// Time is linear in the text, memory in the items.
//
// An engine that backtracks ends with an error when its stack is full (ICU's does at 200,000 spaces behind a
// month's name), and a loop over it loses all further items of that pattern. Nothing is given up here: such a
// page gives the items that the patterns describe.

/// The items of all kinds on one page: by kind in the order above, within a kind by pattern, within a pattern
/// by place. Nothing is merged: text that two patterns match is listed twice. Any thread.
std::vector<ExtractedItem> extractItems(QStringView text, std::int64_t pageNumber);

/// The items of all pages, page after page.
std::vector<ExtractedItem> extractItems(const PageTexts& pages);

/// The items of one kind alone.
std::vector<ExtractedItem>
extractItems(ExtractedItem::ItemType kind, QStringView text, std::int64_t pageNumber);

/// The text around a match: up to 50 UTF-16 units on either side between two times three dots, each line feed
/// as a space. Cuts where the count says, be it within a surrogate pair.
QString extractSnippet(TextRange match, QStringView text);

} // namespace quillo
