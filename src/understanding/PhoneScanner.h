// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "understanding/PatternScan.h"

#include <array>

namespace quillo {

/// Telephone numbers:
///   0  \+?1?\s?\(?(\d{3})\)?[\s\-]?(\d{3})[\s\-]?(\d{4})
///   1  \+?44\s?\d{4}\s?\d{6}
///   2  \(\d{3}\)\s?\d{3}-\d{4}
///
/// Every match has a fixed greatest length, so a try at one offset takes constant time, and each offset is
/// tried a fixed number of times at most.
class PhoneScanner
{
public:
    void atDigits(const ScannedText& text, const DigitRun& run);

    std::array<MatchList, 3> matches;

private:
    void findNational(const ScannedText& text, const DigitRun& run);
    void findBritish(const ScannedText& text, const DigitRun& run);
    void findParenthesised(const ScannedText& text, const DigitRun& run);
};

} // namespace quillo
