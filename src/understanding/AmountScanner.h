// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "understanding/PatternScan.h"

#include <array>

namespace quillo {

/// Amounts of money:
///   0  \$\s?(\d{1,3}(,\d{3})*|\d+)(\.\d{2})?
///   1  £\s?(\d{1,3}(,\d{3})*|\d+)(\.\d{2})?
///   2  €\s?(\d{1,3}(,\d{3})*|\d+)(\.\d{2})?
///   3  (\d{1,3}(,\d{3})*|\d+)(\.\d{2})?\s?(USD|EUR|GBP|CAD|AUD)
///
/// Behind a currency sign the first alternative always leads to a match, so "$1234" gives "$123". Before a
/// currency code the number is read backwards from the code. Either way every character that is read beyond a
/// fixed number belongs to the match that is found, so the time is linear.
class AmountScanner
{
public:
    void atDigits(const ScannedText& text, const DigitRun& run);

    std::array<MatchList, 4> matches;

private:
    void findAfterSign(const ScannedText& text, const DigitRun& run);
    void findBeforeCode(const ScannedText& text, const DigitRun& run);
};

} // namespace quillo
