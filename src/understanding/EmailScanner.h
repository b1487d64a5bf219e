// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "understanding/PatternScan.h"

#include <array>

namespace quillo {

/// E-mail addresses:
///   [A-Za-z0-9._%+-]+@[A-Za-z0-9.-]+\.[A-Z|a-z]{2,}
///
/// Found from the at sign. As no part has one, what is read before and behind a sign stays between its
/// neighbours: every character is read twice at most.
class EmailScanner
{
public:
    void atAtSign(const ScannedText& text, qsizetype sign);

    std::array<MatchList, 1> matches;
};

} // namespace quillo
