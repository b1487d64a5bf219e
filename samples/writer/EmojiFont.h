// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "writer/Font.h"

namespace samples {

/// A few coloured pictures as characters of a font whose glyphs are drawings of their own.
class EmojiFont : public Font
{
public:
    double width(std::string_view utf8) const override;
    /// Throws std::invalid_argument for a character that the font lacks.
    std::string show(std::string_view utf8) override;
    PdfFile::Ref write(PdfFile& file) const override;
};

} // namespace samples
