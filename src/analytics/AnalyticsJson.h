// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "analytics/AnalyticsEvent.h"
#include "json/StrictJson.h"

#include <stdexcept>

namespace quillo {

// The wire form of events and batches: objects keyed by the member names. A timestamp is a number of seconds
// since 2001-01-01T00:00:00Z, with its fraction. Metadata is encoded twice: it is a string that holds the
// compact JSON text of an object.

/// A metadata value that JSON cannot hold. what() names its type.
class EncodingError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// Throws EncodingError.
Json toJson(const AnalyticsEvent& event);
/// Throws EncodingError when one of the events cannot be encoded.
Json toJson(const AnalyticsBatch& batch);

/// Throws DecodingError, naming the key, when a member is missing or of the wrong type or the event type is
/// unknown. Metadata that is not the text of an object is no error but empty.
AnalyticsEvent analyticsEventFromJson(const Json& value);
/// Throws DecodingError.
AnalyticsBatch analyticsBatchFromJson(const Json& value);

} // namespace quillo
