// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "understanding/PatternScan.h"

#include <array>

namespace quillo {

/// Reference numbers, without regard to case:
///   0  (Invoice|Reference|Order|Account|Confirmation|Tracking)\s*(Number|#|No\.?):\s*([A-Z0-9\-]+)
///   1  (INV|REF|ORD|ACC|CNF|TRK)[\-\s]?(\d{6,})
///
/// The first is found from its colon, the second from its digits. Besides parts of fixed length, white space
/// before and behind a colon is read once for that colon, and a code is read when it belongs to a match; so
/// the time is linear.
class ReferenceScanner
{
public:
    void atColon(const ScannedText& text, qsizetype colon);
    void atDigits(const ScannedText& text, const DigitRun& run);

    std::array<MatchList, 2> matches;
};

} // namespace quillo
