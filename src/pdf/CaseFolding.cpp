// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/CaseFolding.h"

#include <algorithm>
#include <array>
#include <utility>

namespace pdf {
namespace {

struct Expansion
{
    char32_t code;
    std::u32string_view letters;
};

// Characters that fold to several which neither their decomposition nor the folding of single characters
// gives: what CaseFolding.txt of Unicode 15 lists with status F and no canonical decomposition.
constexpr std::array<Expansion, 17> expansions = {{
    {0x00DF, U"ss"},
    {0x0149, U"\u02BCn"},
    {0x0587, U"\u0565\u0582"},
    {0x1E9A, U"a\u02BE"},
    {0x1E9E, U"ss"},
    {0xFB00, U"ff"},
    {0xFB01, U"fi"},
    {0xFB02, U"fl"},
    {0xFB03, U"ffi"},
    {0xFB04, U"ffl"},
    {0xFB05, U"st"},
    {0xFB06, U"st"},
    {0xFB13, U"\u0574\u0576"},
    {0xFB14, U"\u0574\u0565"},
    {0xFB15, U"\u0574\u056B"},
    {0xFB16, U"\u057E\u0576"},
    {0xFB17, U"\u0574\u056D"},
}};

constexpr char32_t dotAbove = 0x307;

const Expansion* expansionOf(char32_t code)
{
    const auto expansion = std::find_if(
        expansions.begin(), expansions.end(), [&](const Expansion& entry) { return entry.code == code; });
    return expansion == expansions.end() ? nullptr : &*expansion;
}

void appendFolded(std::u32string& result, char32_t code)
{
    if (const Expansion* expansion = expansionOf(code))
        result += expansion->letters;
    else if (code == dotAbove && !result.empty() && result.back() == U'i')
        return;
    else
        result += QChar::toCaseFolded(code);
}

/// A quick look that spares most characters the long way.
bool mayHaveForm(char32_t code)
{
    if (QChar::isSurrogate(code))
        return false;
    return QChar::decompositionTag(code) == QChar::Canonical || QChar::toCaseFolded(code) != code ||
           expansionOf(code) != nullptr;
}

std::u32string composed(const std::u32string& text)
{
    return QString::fromUcs4(text.data(), static_cast<qsizetype>(text.size()))
        .normalized(QString::NormalizationForm_C)
        .toStdU32String();
}

std::u32string folded(const QString& text)
{
    std::u32string result;
    for (const char32_t code : text.normalized(QString::NormalizationForm_D).toStdU32String())
        appendFolded(result, code);
    return composed(result);
}

} // namespace

const CaseFolding& CaseFolding::ignoringCase()
{
    static const auto* const folding = new CaseFolding(true);
    return *folding;
}

const CaseFolding& CaseFolding::keepingCase()
{
    static const auto* const folding = new CaseFolding(false);
    return *folding;
}

CaseFolding::CaseFolding(bool ignoresCase)
    : m_ignoresCase(ignoresCase)
    , m_forms(basicPlane)
{
    for (char32_t code = 0; code < basicPlane; ++code) {
        m_forms[code] = static_cast<char16_t>(code);
        if (!mayHaveForm(code))
            continue;
        std::u32string form = formOf(QString(QChar(static_cast<char16_t>(code))));
        if (form.size() == 1 && form.front() < basicPlane) {
            m_forms[code] = static_cast<char16_t>(form.front());
        } else {
            m_forms[code] = 0;
            m_specials.push_back({code, std::move(form)});
        }
    }
}

std::u32string_view CaseFolding::specialForm(char32_t code) const
{
    const auto special = std::lower_bound(
        m_specials.begin(), m_specials.end(), code,
        [](const Special& entry, char32_t value) { return entry.code < value; });
    return special != m_specials.end() && special->code == code ? special->form : std::u32string_view();
}

std::u32string CaseFolding::formOf(const QString& text) const
{
    return m_ignoresCase ? folded(text) : text.normalized(QString::NormalizationForm_C).toStdU32String();
}

char32_t CaseFolding::formBeyond(char32_t code) const
{
    return m_ignoresCase ? QChar::toCaseFolded(code) : code;
}

} // namespace pdf
