// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "profile/UserProfile.h"
#include "json/StrictJson.h"

namespace quillo {

// The JSON form of the profile: objects keyed by the member names, a date as a number of seconds since
// 2001-01-01T00:00:00Z, the signature as base64. The three optional members are written only when present.

/// Compact UTF-8 text.
QByteArray encodeUserProfile(const UserProfile& profile);

/// Throws DecodingError, naming the key, when a member that is not optional is missing or any is of the wrong
/// type.
UserProfile decodeUserProfile(const QByteArray& text);

} // namespace quillo
