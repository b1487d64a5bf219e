// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/ToUnicode.h"

#include "pdf/Engine.h"

#include <QByteArray>

#include <map>

// Where MuPDF is called, nothing is made that would have to be destroyed: its errors skip destructors.
namespace pdf {
namespace {

constexpr std::size_t entriesOfBlock = 100;

constexpr const char* head = "/CIDInit /ProcSet findresource begin\n"
                             "12 dict begin\n"
                             "begincmap\n"
                             "/CIDSystemInfo <</Registry(Adobe)/Ordering(UCS)/Supplement 0>> def\n"
                             "/CMapName /Adobe-Identity-UCS def\n"
                             "/CMapType 2 def\n"
                             "1 begincodespacerange\n<0000> <FFFF>\nendcodespacerange\n";
constexpr const char* foot = "endcmap\n"
                             "CMapName currentdict /CMap defineresource pop\n"
                             "end\nend\n";

/// What a content stream shows between BT and ET.
struct TextBlock
{
    QByteArray font;
    std::vector<unsigned> codes;
};

using CodeMap = std::map<unsigned, QString>;

std::vector<TextBlock> textBlocksOf(const QByteArray& content)
{
    constexpr qsizetype codeSize = 6; // <0000>
    std::vector<TextBlock> blocks;
    QByteArray name;
    for (const QByteArray& token : content.simplified().split(' ')) {
        if (token == "BT")
            blocks.emplace_back();
        else if (token.startsWith('/'))
            name = token.mid(1);
        else if (token == "Tf" && !blocks.empty())
            blocks.back().font = name;
        else if (token.startsWith('<') && token.size() == codeSize && !blocks.empty())
            blocks.back().codes.push_back(token.mid(1, codeSize - 2).toUInt(nullptr, 16));
    }
    return blocks;
}

/// The characters that each font's codes stand for; nothing where the content shows another text.
std::map<QByteArray, CodeMap>
characterMaps(const std::vector<TextBlock>& blocks, const std::vector<QStringList>& text)
{
    std::map<QByteArray, CodeMap> maps;
    if (blocks.size() != text.size())
        return {};
    for (std::size_t i = 0; i < blocks.size(); ++i) {
        const std::vector<unsigned>& codes = blocks[i].codes;
        const auto count = static_cast<std::size_t>(text[i].size());
        // A font that is made bold by drawing it twice has all its glyphs twice.
        if (count == 0 || codes.size() % count != 0)
            return {};
        CodeMap& map = maps[blocks[i].font];
        for (std::size_t j = 0; j < codes.size(); ++j) {
            const QString& characters = text[i][static_cast<qsizetype>(j % count)];
            if (!characters.isEmpty())
                map.emplace(codes[j], characters);
        }
    }
    return maps;
}

QByteArray hexadecimal(unsigned code)
{
    return QByteArray::number(code, 16).rightJustified(4, '0');
}

QByteArray cmapOf(const CodeMap& map)
{
    QByteArray result = head;
    std::size_t left = map.size();
    std::size_t room = 0;
    for (const auto& [code, characters] : map) {
        if (room == 0) {
            room = std::min(left, entriesOfBlock);
            result += QByteArray::number(static_cast<qulonglong>(room)) + " beginbfchar\n";
        }
        result += '<' + hexadecimal(code) + "> <";
        for (const QChar unit : characters)
            result += hexadecimal(unit.unicode());
        result += ">\n";
        --left;
        if (--room == 0)
            result += "endbfchar\n";
    }
    return result + foot;
}

void writeMap(fz_context* ctx, pdf_document* document, pdf_obj* font, const QByteArray& map)
{
    pdf_obj* stream = pdf_dict_get(ctx, font, PDF_NAME(ToUnicode));
    if (!pdf_is_stream(ctx, stream))
        return;
    fz_buffer* buffer = fz_new_buffer_from_copied_data(
        ctx, reinterpret_cast<const unsigned char*>(map.constData()), static_cast<std::size_t>(map.size()));
    fz_try(ctx)
    {
        pdf_update_stream(ctx, document, stream, buffer, 0);
    }
    fz_always(ctx)
    {
        fz_drop_buffer(ctx, buffer);
    }
    fz_catch(ctx)
    {
        fz_rethrow(ctx);
    }
}

} // namespace

std::optional<PDFError> writeToUnicode(
    CookieScope& scope, pdf_document* document, pdf_obj* owner, const char* path,
    const std::vector<QStringList>& text)
{
    QByteArray content;
    auto error = engine::attempt(scope, [&](fz_context* ctx) {
        engine::takeBytes(ctx, pdf_load_stream(ctx, pdf_dict_getp(ctx, owner, path)), content);
    });
    for (const auto& fontAndMap : characterMaps(textBlocksOf(content), text)) {
        const char* font = fontAndMap.first.constData();
        const QByteArray map = cmapOf(fontAndMap.second);
        if (error)
            break;
        error = engine::attempt(scope, [&](fz_context* ctx) {
            pdf_obj* fonts = pdf_dict_getp(ctx, pdf_dict_getp(ctx, owner, path), "Resources/Font");
            writeMap(ctx, document, pdf_dict_gets(ctx, fonts, font), map);
        });
    }
    return error;
}

} // namespace pdf
