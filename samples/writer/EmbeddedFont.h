// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "writer/Font.h"
#include "writer/Shaping.h"

#include <cstdint>
#include <map>
#include <string>

namespace samples {

/// A small TrueType font that goes whole into the document. Text is shaped, so joined scripts join, and a map
/// tells readers which letters every glyph stands for.
class EmbeddedFont : public Font
{
public:
    /// `name` is a file of the fonts folder without its extension. Throws std::runtime_error when there is
    /// none.
    explicit EmbeddedFont(std::string name);

    double width(std::string_view utf8) const override;
    /// Throws std::invalid_argument for a character that the font lacks.
    std::string show(std::string_view utf8) override;
    PdfFile::Ref write(PdfFile& file) const override;

private:
    std::string toUnicodeMap() const;

    std::string m_name;
    std::string m_data;
    HarfBuzzFont m_font;
    /// The letters for which the glyphs that were shown stand.
    std::map<std::uint32_t, std::u32string> m_letters;
};

} // namespace samples
