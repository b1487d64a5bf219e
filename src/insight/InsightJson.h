// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "insight/DocumentInsight.h"
#include "json/StrictJson.h"

namespace quillo {

// The JSON form of the insight model: one object per value, keyed by the member names, enumerations as their
// raw values. A date is a number of seconds since 2001-01-01T00:00:00Z, with its fraction; a rectangle is
// [[x, y], [width, height]]; an identifier is upper-case UUID text. Optional members are written only when
// present. Decoding is strict: a missing key, an unknown raw value or a value of the wrong type is a
// DecodingError that names the key, and there are no defaults.

Json toJson(const DocumentInsight& insight);
Json toJson(const DocumentInsight::ActionRequired& actions);
Json toJson(const DocumentInsight::ActionReason& reason);
Json toJson(const ExtractedItem& item);
/// Writes what toJson() gives.
void write(JsonWriter& writer, const ExtractedItem& item);
/// The array of the items.
Json toJson(const std::vector<ExtractedItem>& items);

DocumentInsight documentInsightFromJson(const Json& value);
DocumentInsight::ActionRequired actionRequiredFromJson(const Json& value);
DocumentInsight::ActionReason actionReasonFromJson(const Json& value);
ExtractedItem extractedItemFromJson(const Json& value);

} // namespace quillo
