// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "writer/Font.h"

namespace samples {

enum class Typeface { sans, sansBold, serif, serifBold, serifItalic };

/// One of the fonts that every viewer has, so nothing is embedded. It shows what Windows code page 1252 has.
/// The serif ones set "fi" and "fl" as ligatures, and say what letters these stand for.
class StandardFont : public Font
{
public:
    explicit StandardFont(Typeface face);

    double width(std::string_view utf8) const override;
    std::string show(std::string_view utf8) override;
    PdfFile::Ref write(PdfFile& file) const override;

    /// The text's bytes in this font. Throws std::invalid_argument for a character that it lacks.
    std::string encode(std::string_view utf8) const;

private:
    Typeface m_face;
};

} // namespace samples
