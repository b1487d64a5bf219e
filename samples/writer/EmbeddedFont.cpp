// SPDX-License-Identifier: AGPL-3.0-or-later
#include "writer/EmbeddedFont.h"

#include <hb.h>

#include <vector>

namespace samples {
namespace {

// No more entries may stand between beginbfchar and endbfchar.
constexpr std::size_t entriesPerMapBlock = 100;

/// The font's bounding box as its header has it, in font units.
std::vector<double> boundingBox(hb_font_t* font)
{
    constexpr unsigned boxOffset = 36;
    hb_blob_t* head = hb_face_reference_table(hb_font_get_face(font), HB_TAG('h', 'e', 'a', 'd'));
    unsigned size = 0;
    const char* data = hb_blob_get_data(head, &size);
    std::vector<double> box;
    for (unsigned at = boxOffset; at < boxOffset + 8 && at + 1 < size; at += 2) {
        const auto high = static_cast<unsigned char>(data[at]);
        const auto low = static_cast<unsigned char>(data[at + 1]);
        box.push_back(static_cast<std::int16_t>(static_cast<std::uint16_t>(high << 8 | low)));
    }
    hb_blob_destroy(head);
    return box;
}

std::string glyphCode(std::uint32_t index)
{
    // A glyph number has the form of one UTF-16 unit.
    const auto unit = static_cast<char32_t>(index);
    return utf16Hex({&unit, 1});
}

} // namespace

EmbeddedFont::EmbeddedFont(std::string name)
    : m_name(std::move(name))
    , m_data(fontData(m_name))
    , m_font(openFont(m_data))
{}

double EmbeddedFont::width(std::string_view utf8) const
{
    int sum = 0;
    for (const Glyph& glyph : shaped(m_font.get(), utf8))
        sum += glyph.advance;
    return sum * 1000.0 / unitsPerEm(m_font.get());
}

std::string EmbeddedFont::show(std::string_view utf8)
{
    std::string codes = "<";
    for (const Glyph& glyph : shaped(m_font.get(), utf8)) {
        codes += glyphCode(glyph.index);
        m_letters.emplace(glyph.index, glyph.letters);
    }
    return codes + ">Tj";
}

std::string EmbeddedFont::toUnicodeMap() const
{
    std::string map = "/CIDInit/ProcSet findresource begin\n"
                      "12 dict begin\n"
                      "begincmap\n"
                      "/CIDSystemInfo<</Registry(Adobe)/Ordering(UCS)/Supplement 0>>def\n"
                      "/CMapName/Adobe-Identity-UCS def\n"
                      "/CMapType 2 def\n"
                      "1 begincodespacerange\n<0000><FFFF>\nendcodespacerange\n";
    std::string block;
    std::size_t entries = 0;
    const auto flush = [&] {
        if (entries > 0)
            map += std::to_string(entries) + " beginbfchar\n" + block + "endbfchar\n";
        block.clear();
        entries = 0;
    };
    for (const auto& [index, letters] : m_letters) {
        block += "<" + glyphCode(index) + "><" + utf16Hex(letters) + ">\n";
        if (++entries == entriesPerMapBlock)
            flush();
    }
    flush();
    return map + "endcmap\nCMapName currentdict/CMap defineresource pop\nend\nend\n";
}

PdfFile::Ref EmbeddedFont::write(PdfFile& file) const
{
    hb_font_t* font = m_font.get();
    const double scale = 1000.0 / unitsPerEm(font);
    hb_font_extents_t extents = {};
    hb_font_get_h_extents(font, &extents);
    std::vector<double> box = boundingBox(font);
    for (double& value : box)
        value *= scale;
    std::vector<double> widths;
    for (unsigned glyph = 0; glyph < hb_face_get_glyph_count(hb_font_get_face(font)); ++glyph)
        widths.push_back(hb_font_get_glyph_h_advance(font, glyph) * scale);

    // Six letters tell that the font is a part of another.
    const std::string name = "/QUILLO+" + m_name;
    const PdfFile::Ref data =
        file.addStream("/Length1 " + std::to_string(m_data.size()), m_data, PdfFile::Compression::deflate);
    const PdfFile::Ref descriptor = file.add(
        "<</Type/FontDescriptor/FontName" + name + "/Flags 4/ItalicAngle 0/StemV 80/FontBBox" + numbers(box) +
        "/Ascent " + number(extents.ascender * scale) + "/Descent " + number(extents.descender * scale) +
        "/CapHeight 714/FontFile2 " + reference(data) + ">>");
    const PdfFile::Ref descendant = file.add(
        "<</Type/Font/Subtype/CIDFontType2/BaseFont" + name +
        "/CIDSystemInfo<</Registry(Adobe)/Ordering(Identity)/Supplement 0>>/CIDToGIDMap/Identity/DW "
        "1000/W[0" +
        numbers(widths) + "]/FontDescriptor " + reference(descriptor) + ">>");
    const PdfFile::Ref map = file.addStream("", toUnicodeMap(), PdfFile::Compression::none);
    return file.add(
        "<</Type/Font/Subtype/Type0/BaseFont" + name + "/Encoding/Identity-H/DescendantFonts[" +
        reference(descendant) + "]/ToUnicode " + reference(map) + ">>");
}

} // namespace samples
