// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <QRectF>
#include <QString>
#include <QUuid>

#include <cstdint>
#include <optional>

namespace quillo {

/// One datum found in a document's text: a date, an amount, a number, an address.
struct ExtractedItem
{
    enum class ItemType { date, amount, reference, email, phone, address };

    QUuid id = QUuid::createUuid();
    ItemType type = ItemType::date;
    /// The matched text, exactly as it stands in the page text.
    QString value;
    /// 0.0 to 1.0, fixed for each type.
    double confidence = 0.0;
    /// Zero-based.
    std::int64_t pageNumber = 0;
    /// The text around the value.
    QString sourceSnippet;
    /// Page points, origin at the page's lower left. The extractor sets none.
    std::optional<QRectF> boundingBox;
};

/// The type's name in data ("date", "amount", ...).
QString rawValue(ExtractedItem::ItemType type);

/// The type with exactly this name, or none.
std::optional<ExtractedItem::ItemType> itemTypeFromRawValue(QStringView name);

} // namespace quillo
