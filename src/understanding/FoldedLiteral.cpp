// SPDX-License-Identifier: AGPL-3.0-or-later
#include "understanding/FoldedLiteral.h"

#include <algorithm>
#include <iterator>

namespace quillo {
namespace {

struct Folding
{
    char16_t character;
    std::string_view letters;
};

constexpr Folding foldings[] = {
    {0x00DF, "ss"}, // sharp s
    {0x017F, "s"},  // long s
    {0x1E9E, "ss"}, // capital sharp s
    {0x212A, "k"},  // Kelvin sign
    {0xFB00, "ff"},  {0xFB01, "fi"},  {0xFB02, "fl"},
    {0xFB03, "ffi"}, {0xFB04, "ffl"}, {0xFB05, "st"}, // with a long s
    {0xFB06, "st"},
};

char16_t lowerAscii(char16_t unit)
{
    return unit >= u'A' && unit <= u'Z' ? static_cast<char16_t>(unit + (u'a' - u'A')) : unit;
}

} // namespace

std::string_view foldedToAscii(char16_t unit)
{
    const auto folding = std::ranges::find(foldings, unit, &Folding::character);
    return folding == std::end(foldings) ? std::string_view() : folding->letters;
}

qsizetype afterLiteral(const ScannedText& text, qsizetype at, std::string_view literal)
{
    for (; !literal.empty(); ++at) {
        const char16_t unit = text.unit(at);
        if (unit < 0x80) {
            if (lowerAscii(unit) != static_cast<char16_t>(literal.front()))
                return ScannedText::nowhere;
            literal.remove_prefix(1);
        } else {
            const std::string_view letters = foldedToAscii(unit);
            if (letters.empty() || !literal.starts_with(letters))
                return ScannedText::nowhere;
            literal.remove_prefix(letters.size());
        }
    }
    return at;
}

qsizetype beforeLiteral(const ScannedText& text, qsizetype at, std::string_view literal)
{
    for (; !literal.empty(); --at) {
        const char16_t unit = text.unit(at - 1);
        if (unit < 0x80) {
            if (lowerAscii(unit) != static_cast<char16_t>(literal.back()))
                return ScannedText::nowhere;
            literal.remove_suffix(1);
        } else {
            const std::string_view letters = foldedToAscii(unit);
            if (letters.empty() || !literal.ends_with(letters))
                return ScannedText::nowhere;
            literal.remove_suffix(letters.size());
        }
    }
    return at;
}

qsizetype LiteralTable::afterAny(const ScannedText& text, qsizetype at) const
{
    for (const std::string_view literal : m_literals) {
        if (const qsizetype end = afterLiteral(text, at, literal); end != ScannedText::nowhere)
            return end;
    }
    return ScannedText::nowhere;
}

qsizetype LiteralTable::beforeAny(const ScannedText& text, qsizetype at) const
{
    for (const std::string_view literal : m_literals) {
        if (const qsizetype start = beforeLiteral(text, at, literal); start != ScannedText::nowhere)
            return start;
    }
    return ScannedText::nowhere;
}

} // namespace quillo
