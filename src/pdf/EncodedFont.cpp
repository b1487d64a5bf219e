// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/EncodedFont.h"

#include "pdf/MuPDFVersion.h"

#include <QList>
#include <QString>

#include <algorithm>

namespace pdf {
namespace {

void fillTable(fz_context* ctx, pdf_font_desc* font, EncodedFont::Table& table)
{
    for (int code = 32; code < 256; ++code) {
        const auto index = static_cast<std::size_t>(code);
        int character =
            font->to_unicode ? pdf_lookup_cmap(font->to_unicode, static_cast<unsigned>(code)) : -1;
        if (character <= 0 && index < font->cid_to_ucs_len)
            character = font->cid_to_ucs[index];
        // A subset has glyphs for the characters that the document used, and no others.
        const bool hasGlyph = code == 32 || pdf_font_cid_to_gid(ctx, font, code) > 0;
        if (character <= 0 || character == 0xFFFD || !hasGlyph)
            continue;
        table.characters[index] = static_cast<char32_t>(character);
        table.widths[index] = pdf_lookup_hmtx(ctx, font, code).w / 1000.0;
    }
}

} // namespace

EncodedFont::EncodedFont(const Table& table)
    : m_table(table)
{
    for (std::size_t code = 0; code < table.characters.size(); ++code) {
        const char32_t character = table.characters[code];
        if (character != 0)
            m_codes.emplace(character, static_cast<unsigned char>(code));
    }
}

bool EncodedFont::canShow(QStringView text) const
{
    const auto characters = text.toUcs4();
    return std::all_of(characters.begin(), characters.end(), [this](char32_t character) {
        return m_codes.contains(character);
    });
}

QByteArray EncodedFont::encode(QStringView text) const
{
    QByteArray codes;
    for (const uint character : text.toUcs4()) {
        if (const auto code = m_codes.find(character); code != m_codes.end())
            codes += static_cast<char>(code->second);
    }
    return codes;
}

double EncodedFont::width(QStringView text) const
{
    double sum = 0.0;
    for (const char code : encode(text))
        sum += m_table.widths[static_cast<unsigned char>(code)];
    return sum;
}

void readFontTable(fz_context* ctx, pdf_document* document, pdf_obj* font, EncodedFont::Table& table)
{
    pdf_obj* type = pdf_dict_get(ctx, font, PDF_NAME(Subtype));
    if (pdf_name_eq(ctx, type, PDF_NAME(Type0)) || pdf_name_eq(ctx, type, PDF_NAME(Type3)))
        return;
    pdf_font_desc* loaded = pdf_load_font(ctx, document, nullptr, font);
    fz_try(ctx)
    {
        fillTable(ctx, loaded, table);
    }
    fz_always(ctx)
    {
        pdf_drop_font(ctx, loaded);
    }
    fz_catch(ctx)
    {
        fz_rethrow(ctx);
    }
}

} // namespace pdf
