// SPDX-License-Identifier: AGPL-3.0-or-later
#include "understanding/ExtractionReference.h"

#include <unicode/uregex.h>

#include <algorithm>
#include <map>
#include <memory>
#include <stdexcept>

namespace quillo::reference {
namespace {

using ItemType = ExtractedItem::ItemType;

constexpr const char16_t* dates[] = {
    uR"((\d{1,2})/(\d{1,2})/(\d{4}))",
    uR"((January|February|March|April|May|June|July|August|September|October|November|December)\s+(\d{1,2}),?\s+(\d{4}))",
    uR"((\d{1,2})\s+(January|February|March|April|May|June|July|August|September|October|November|December)\s+(\d{4}))",
    uR"((\d{4})-(\d{2})-(\d{2}))",
};

constexpr const char16_t* amounts[] = {
    uR"(\$\s?(\d{1,3}(,\d{3})*|\d+)(\.\d{2})?)",
    uR"(£\s?(\d{1,3}(,\d{3})*|\d+)(\.\d{2})?)",
    uR"(€\s?(\d{1,3}(,\d{3})*|\d+)(\.\d{2})?)",
    uR"((\d{1,3}(,\d{3})*|\d+)(\.\d{2})?\s?(USD|EUR|GBP|CAD|AUD))",
};

constexpr const char16_t* references[] = {
    uR"((Invoice|Reference|Order|Account|Confirmation|Tracking)\s*(Number|#|No\.?):\s*([A-Z0-9\-]+))",
    uR"((INV|REF|ORD|ACC|CNF|TRK)[\-\s]?(\d{6,}))",
};

constexpr const char16_t* emails[] = {
    uR"([A-Za-z0-9._%+-]+@[A-Za-z0-9.-]+\.[A-Z|a-z]{2,})",
};

constexpr const char16_t* phones[] = {
    uR"(\+?1?\s?\(?(\d{3})\)?[\s\-]?(\d{3})[\s\-]?(\d{4}))",
    uR"(\+?44\s?\d{4}\s?\d{6})",
    uR"(\(\d{3}\)\s?\d{3}-\d{4})",
};

constexpr const char16_t* addresses[] = {
    uR"(\d+\s+[A-Za-z\s]+(?:Street|St|Avenue|Ave|Road|Rd|Boulevard|Blvd|Lane|Ln|Drive|Dr|Court|Ct|Way)\.?)",
};

constexpr Kind table[] = {
    {ItemType::date, true, 0.9, dates},
    {ItemType::amount, false, 0.95, amounts},
    {ItemType::reference, true, 0.85, references},
    {ItemType::email, false, 0.98, emails},
    {ItemType::phone, false, 0.85, phones},
    {ItemType::address, true, 0.7, addresses},
};

using Expression = std::unique_ptr<URegularExpression, decltype(&uregex_close)>;

void check(UErrorCode error)
{
    if (U_FAILURE(error))
        throw std::runtime_error(u_errorName(error));
}

URegularExpression* compiled(const char16_t* pattern, bool caseInsensitive)
{
    static std::map<const char16_t*, Expression> expressions;
    const auto found = expressions.find(pattern);
    if (found != expressions.end())
        return found->second.get();
    UErrorCode error = U_ZERO_ERROR;
    Expression expression(
        uregex_open(pattern, -1, caseInsensitive ? UREGEX_CASE_INSENSITIVE : 0, nullptr, &error),
        uregex_close);
    uregex_setStackLimit(expression.get(), 0, &error);
    check(error);
    return expressions.emplace(pattern, std::move(expression)).first->second.get();
}

QString snippet(QStringView text, qsizetype location, qsizetype length)
{
    const qsizetype start = std::max<qsizetype>(location - 50, 0);
    const QString before = text.mid(start, location - start).toString();
    const QString match = text.mid(location, length).toString();
    const QString after = text.mid(location + length, 50).toString();
    const QString dots = QStringLiteral("...");
    QString joined = dots + before + match + after + dots;
    return joined.replace(QLatin1Char('\n'), QLatin1Char(' '));
}

} // namespace

std::span<const Kind> kinds()
{
    return table;
}

std::vector<ExtractedItem> extractItems(const Kind& kind, QStringView text, std::int64_t pageNumber)
{
    std::vector<ExtractedItem> items;
    for (const char16_t* pattern : kind.patterns) {
        URegularExpression* expression = compiled(pattern, kind.caseInsensitive);
        UErrorCode error = U_ZERO_ERROR;
        // ICU wants a pointer even to nothing.
        const char16_t* units = text.isEmpty() ? u"" : text.utf16();
        uregex_setText(expression, units, static_cast<int32_t>(text.size()), &error);
        while (uregex_findNext(expression, &error)) {
            const qsizetype start = uregex_start(expression, 0, &error);
            const qsizetype length = uregex_end(expression, 0, &error) - start;
            ExtractedItem& item = items.emplace_back();
            item.type = kind.type;
            item.value = text.mid(start, length).toString();
            item.confidence = kind.confidence;
            item.pageNumber = pageNumber;
            item.sourceSnippet = snippet(text, start, length);
        }
        check(error);
    }
    return items;
}

std::vector<ExtractedItem> extractItems(QStringView text, std::int64_t pageNumber)
{
    std::vector<ExtractedItem> items;
    for (const Kind& kind : table) {
        for (ExtractedItem& item : extractItems(kind, text, pageNumber))
            items.push_back(std::move(item));
    }
    return items;
}

} // namespace quillo::reference
