// SPDX-License-Identifier: AGPL-3.0-or-later
#include "writer/StandardFont.h"

#include "writer/StandardWidths.h"

#include <stdexcept>

namespace samples {
namespace {

using namespace std::string_view_literals;

// Codes 0x80 to 0x9F of the code page; 0 where it has none.
constexpr std::u32string_view windowsPunctuation =
    U"\u20ac\0\u201a\u0192\u201e\u2026\u2020\u2021\u02c6\u2030\u0160\u2039\u0152\0\u017d\0"
    U"\0\u2018\u2019\u201c\u201d\u2022\u2013\u2014\u02dc\u2122\u0161\u203a\u0153\0\u017e\u0178"sv;

constexpr char fiCode = 1;
constexpr char flCode = 2;

constexpr std::string_view ligatureMap = "/CIDInit/ProcSet findresource begin\n"
                                         "12 dict begin\n"
                                         "begincmap\n"
                                         "/CMapName/Ligatures def\n"
                                         "/CMapType 2 def\n"
                                         "1 begincodespacerange\n<00><FF>\nendcodespacerange\n";

bool hasLigatures(Typeface face)
{
    return face != Typeface::sans && face != Typeface::sansBold;
}

/// Tells what each code stands for; a map that names the ligatures alone would take the rest away.
std::string toUnicodeMap()
{
    std::string ranges = "3 beginbfrange\n<20><7E><0020>\n<A0><FF><00A0>\n<91><92><2018>\nendbfrange\n";
    std::string singles;
    int count = 2;
    for (std::size_t i = 0; i < windowsPunctuation.size(); ++i) {
        const char32_t point = windowsPunctuation[i];
        if (point == 0 || point == U'\u2018' || point == U'\u2019')
            continue;
        constexpr std::string_view digits = "0123456789ABCDEF";
        singles += '<';
        singles += digits[8 + i / 16];
        singles += digits[i % 16];
        singles += "><" + utf16Hex(std::u32string_view(&point, 1)) + ">\n";
        ++count;
    }
    return std::string(ligatureMap) + ranges + std::to_string(count) +
           " beginbfchar\n<01><00660069>\n<02><0066006C>\n" + singles +
           "endbfchar\nendcmap\nCMapName currentdict/CMap defineresource pop\nend\nend\n";
}

} // namespace

StandardFont::StandardFont(Typeface face)
    : m_face(face)
{}

std::string StandardFont::encode(std::string_view utf8) const
{
    std::string result;
    for (const char32_t point : codePoints(utf8)) {
        if ((point >= 32 && point < 127) || (point >= 0xa0 && point <= 0xff)) {
            const bool joins = hasLigatures(m_face) && !result.empty() && result.back() == 'f';
            if (joins && (point == U'i' || point == U'l'))
                result.back() = point == U'i' ? fiCode : flCode;
            else
                result += static_cast<char>(point);
            continue;
        }
        const std::size_t code = windowsPunctuation.find(point);
        if (point == 0 || code == std::u32string_view::npos)
            throw std::invalid_argument("a standard font lacks a character of: " + std::string(utf8));
        result += static_cast<char>(0x80 + code);
    }
    return result;
}

double StandardFont::width(std::string_view utf8) const
{
    const StandardWidths& widths = standardWidths(m_face);
    int sum = 0;
    for (const char byte : encode(utf8)) {
        const auto code = static_cast<unsigned char>(byte);
        sum += code < 32 ? widths.ligature : widths.codes[code - 32U];
    }
    return sum;
}

std::string StandardFont::show(std::string_view utf8)
{
    return literal(encode(utf8)) + "Tj";
}

PdfFile::Ref StandardFont::write(PdfFile& file) const
{
    std::string dictionary = "<</Type/Font/Subtype/Type1/BaseFont/";
    dictionary += standardWidths(m_face).name;
    if (!hasLigatures(m_face))
        return file.add(dictionary + "/Encoding/WinAnsiEncoding>>");
    const PdfFile::Ref map = file.addStream("", toUnicodeMap(), PdfFile::Compression::none);
    return file.add(
        dictionary +
        "/Encoding<</Type/Encoding/BaseEncoding/WinAnsiEncoding/Differences[1/fi/fl]>>/ToUnicode " +
        reference(map) + ">>");
}

} // namespace samples
