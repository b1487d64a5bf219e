// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "understanding/PatternScan.h"

#include <array>
#include <cstddef>

namespace quillo {

/// Dates, without regard to case:
///   slashed     (\d{1,2})/(\d{1,2})/(\d{4})
///   monthFirst  (January|...|December)\s+(\d{1,2}),?\s+(\d{4})
///   dayFirst    (\d{1,2})\s+(January|...|December)\s+(\d{4})
///   hyphened    (\d{4})-(\d{2})-(\d{2})
///
/// Each is found from the digits of its first or, with the month in front, second part; the rest has fixed
/// lengths but for white space. A stretch of white space is read only from the parts beside it, which are a
/// fixed number of times each, so the time is linear.
class DateScanner
{
public:
    enum Pattern : std::size_t { slashed, monthFirst, dayFirst, hyphened };

    void atDigits(const ScannedText& text, const DigitRun& run);

    /// By pattern.
    std::array<MatchList, 4> matches;

private:
    void findSlashed(const ScannedText& text, const DigitRun& run);
    void findMonthFirst(const ScannedText& text, const DigitRun& run);
    void findDayFirst(const ScannedText& text, const DigitRun& run);
    void findHyphened(const ScannedText& text, const DigitRun& run);
};

} // namespace quillo
