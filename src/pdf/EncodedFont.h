// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "pdf/FieldFont.h"

#include <QByteArray>

#include <mupdf/pdf.h>

#include <array>
#include <unordered_map>

namespace pdf {

/// A font of the form with at most 256 characters.
class EncodedFont : public FieldFont
{
public:
    /// For each code the character that it shows, 0 for none, and how wide it is.
    struct Table
    {
        std::array<char32_t, 256> characters = {};
        std::array<double, 256> widths = {};
    };

    explicit EncodedFont(const Table& table);

    bool canShow(QStringView text) const;
    /// The text's codes; what the font cannot show is left out.
    QByteArray encode(QStringView text) const;
    double width(QStringView text) const override;

private:
    Table m_table;
    std::unordered_map<char32_t, unsigned char> m_codes;
};

/// Reads what the font shows. A font whose codes have more than one byte, or one that is drawn glyph by glyph
/// as content, gives a table that shows nothing. May throw as MuPDF does.
void readFontTable(fz_context* ctx, pdf_document* document, pdf_obj* font, EncodedFont::Table& table);

} // namespace pdf
