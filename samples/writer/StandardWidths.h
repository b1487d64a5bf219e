// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "writer/StandardFont.h"

#include <array>
#include <string_view>

namespace samples {

/// Advance widths of a standard font, in thousandths of the font size.
struct StandardWidths
{
    std::string_view name;
    /// Of "fi" and "fl".
    int ligature;
    /// Of the codes 32 to 255 of Windows code page 1252; 0 where it has no character.
    std::array<short, 224> codes;
};

const StandardWidths& standardWidths(Typeface face);

} // namespace samples
