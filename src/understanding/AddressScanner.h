// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "understanding/PatternScan.h"

#include <array>

namespace quillo {

/// Street addresses, without regard to case:
///   \d+\s+[A-Za-z\s]+(?:Street|St|Avenue|Ave|Road|Rd|Boulevard|Blvd|Lane|Ln|Drive|Dr|Court|Ct|Way)\.?
///
/// Found from the digits. The run of letters and white space behind has no digits, so it is read for those
/// digits alone, forwards once and backwards once: the time is linear.
class AddressScanner
{
public:
    void atDigits(const ScannedText& text, const DigitRun& run);

    std::array<MatchList, 1> matches;
};

} // namespace quillo
