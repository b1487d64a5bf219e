// SPDX-License-Identifier: AGPL-3.0-or-later
#include "understanding/InformationExtraction.h"

#include "insight/Identity.h"
#include "understanding/AddressScanner.h"
#include "understanding/AmountScanner.h"
#include "understanding/DateScanner.h"
#include "understanding/EmailScanner.h"
#include "understanding/PhoneScanner.h"
#include "understanding/ReferenceScanner.h"

#include <algorithm>
#include <iterator>
#include <optional>

namespace quillo {
namespace {

using ItemType = ExtractedItem::ItemType;

/// A kind of datum and the confidence that its items have.
struct Kind
{
    ItemType type;
    double confidence;
};

constexpr Kind dates{ItemType::date, 0.9};
constexpr Kind amounts{ItemType::amount, 0.95};
constexpr Kind references{ItemType::reference, 0.85};
constexpr Kind emails{ItemType::email, 0.98};
constexpr Kind phones{ItemType::phone, 0.85};
constexpr Kind addresses{ItemType::address, 0.7};

constexpr qsizetype snippetContext = 50;

template <typename Scanner>
std::size_t matchCount(const Scanner& scanner)
{
    std::size_t count = 0;
    for (const MatchList& list : scanner.matches)
        count += list.ranges().size();
    return count;
}

template <typename Scanner>
void appendItems(
    std::vector<ExtractedItem>& items, const Kind& kind, const Scanner& scanner, QStringView text,
    std::int64_t pageNumber)
{
    for (const MatchList& list : scanner.matches) {
        for (const TextRange& match : list.ranges()) {
            items.push_back(
                {freshIdentity(), kind.type, text.mid(match.start, match.end - match.start).toString(),
                 kind.confidence, pageNumber, extractSnippet(match, text), std::nullopt});
        }
    }
}

template <typename Scanner>
std::vector<ExtractedItem> itemsOfKind(const Kind& kind, QStringView text, std::int64_t pageNumber)
{
    Scanner scanner;
    scanPatterns(ScannedText(text), scanner);
    std::vector<ExtractedItem> items;
    items.reserve(matchCount(scanner));
    appendItems(items, kind, scanner, text, pageNumber);
    return items;
}

} // namespace

QString extractSnippet(TextRange match, QStringView text)
{
    const QLatin1String dots("...");
    const qsizetype start = std::max<qsizetype>(match.start - snippetContext, 0);
    const qsizetype end = std::min(match.end + snippetContext, text.size());
    QString snippet;
    snippet.reserve(end - start + 2 * dots.size());
    snippet.append(dots).append(text.mid(start, end - start)).append(dots);
    snippet.replace(QLatin1Char('\n'), QLatin1Char(' '));
    return snippet;
}

std::vector<ExtractedItem> extractItems(QStringView text, std::int64_t pageNumber)
{
    DateScanner dateScanner;
    AmountScanner amountScanner;
    ReferenceScanner referenceScanner;
    EmailScanner emailScanner;
    PhoneScanner phoneScanner;
    AddressScanner addressScanner;
    scanPatterns(
        ScannedText(text), dateScanner, amountScanner, referenceScanner, emailScanner, phoneScanner,
        addressScanner);

    std::vector<ExtractedItem> items;
    items.reserve(
        matchCount(dateScanner) + matchCount(amountScanner) + matchCount(referenceScanner) +
        matchCount(emailScanner) + matchCount(phoneScanner) + matchCount(addressScanner));
    appendItems(items, dates, dateScanner, text, pageNumber);
    appendItems(items, amounts, amountScanner, text, pageNumber);
    appendItems(items, references, referenceScanner, text, pageNumber);
    appendItems(items, emails, emailScanner, text, pageNumber);
    appendItems(items, phones, phoneScanner, text, pageNumber);
    appendItems(items, addresses, addressScanner, text, pageNumber);
    return items;
}

std::vector<ExtractedItem> extractItems(const PageTexts& pages)
{
    std::vector<ExtractedItem> items;
    for (const PageText& page : pages)
        std::ranges::move(extractItems(page.text, page.pageNumber), std::back_inserter(items));
    return items;
}

std::vector<ExtractedItem> extractItems(ItemType kind, QStringView text, std::int64_t pageNumber)
{
    switch (kind) {
    case ItemType::date:
        return itemsOfKind<DateScanner>(dates, text, pageNumber);
    case ItemType::amount:
        return itemsOfKind<AmountScanner>(amounts, text, pageNumber);
    case ItemType::reference:
        return itemsOfKind<ReferenceScanner>(references, text, pageNumber);
    case ItemType::email:
        return itemsOfKind<EmailScanner>(emails, text, pageNumber);
    case ItemType::phone:
        return itemsOfKind<PhoneScanner>(phones, text, pageNumber);
    case ItemType::address:
        return itemsOfKind<AddressScanner>(addresses, text, pageNumber);
    }
    Q_UNREACHABLE();
}

} // namespace quillo
