// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "writer/PdfFile.h"

#include <string>
#include <string_view>

namespace samples {

/// A font as a page's content uses it.
class Font
{
public:
    Font() = default;
    virtual ~Font() = default;
    Font(const Font&) = delete;
    Font& operator=(const Font&) = delete;

    /// The text's advance in thousandths of the font size.
    virtual double width(std::string_view utf8) const = 0;

    /// The operators that show the text at the text position, the font being set.
    virtual std::string show(std::string_view utf8) = 0;

    /// Writes the font's objects, once everything is shown, and returns its dictionary.
    virtual PdfFile::Ref write(PdfFile& file) const = 0;
};

} // namespace samples
