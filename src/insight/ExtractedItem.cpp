// SPDX-License-Identifier: AGPL-3.0-or-later
#include "insight/ExtractedItem.h"

#include "json/RawValues.h"

namespace quillo {
namespace {

using ItemType = ExtractedItem::ItemType;

constexpr RawValueTable<ItemType, 6> itemTypes{{
    {ItemType::date, u"date"},
    {ItemType::amount, u"amount"},
    {ItemType::reference, u"reference"},
    {ItemType::email, u"email"},
    {ItemType::phone, u"phone"},
    {ItemType::address, u"address"},
}};

} // namespace

QString rawValue(ItemType type)
{
    return nameIn(itemTypes, type);
}

std::optional<ItemType> itemTypeFromRawValue(QStringView name)
{
    return caseIn(itemTypes, name);
}

} // namespace quillo
