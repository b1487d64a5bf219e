// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "insight/ExtractedItem.h"

#include <QStringView>

#include <string>
#include <vector>

namespace quillo {

/// The first item in which two lists differ, in words; empty when they are equal but for the identities.
std::string differenceOf(const std::vector<ExtractedItem>& found, const std::vector<ExtractedItem>& expected);

/// A text with everything but plain ASCII escaped.
std::string printable(QStringView text);

} // namespace quillo
