// SPDX-License-Identifier: AGPL-3.0-or-later
#include "understanding/ExtractionComparison.h"

#include <algorithm>
#include <cstdio>

namespace quillo {
namespace {

bool isEqual(const ExtractedItem& one, const ExtractedItem& other)
{
    return one.type == other.type && one.value == other.value && one.confidence == other.confidence &&
           one.pageNumber == other.pageNumber && one.sourceSnippet == other.sourceSnippet &&
           one.boundingBox == other.boundingBox;
}

std::string described(const std::vector<ExtractedItem>& items, std::size_t index)
{
    if (index >= items.size())
        return "nothing";
    const ExtractedItem& item = items[index];
    return rawValue(item.type).toStdString() + " \"" + printable(item.value) + "\" in \"" +
           printable(item.sourceSnippet) + "\"";
}

} // namespace

std::string printable(QStringView text)
{
    std::string result;
    for (const QChar character : text) {
        const char16_t unit = character.unicode();
        if (unit >= 0x20 && unit < 0x7F) {
            result += static_cast<char>(unit);
        } else {
            char escape[8];
            std::snprintf(escape, sizeof escape, "\\u%04X", static_cast<unsigned>(unit));
            result += escape;
        }
    }
    return result;
}

std::string differenceOf(const std::vector<ExtractedItem>& found, const std::vector<ExtractedItem>& expected)
{
    for (std::size_t i = 0; i < std::max(found.size(), expected.size()); ++i) {
        if (i >= found.size() || i >= expected.size() || !isEqual(found[i], expected[i]))
            return "item " + std::to_string(i) + " is " + described(found, i) + " in place of " +
                   described(expected, i);
    }
    return {};
}

} // namespace quillo
