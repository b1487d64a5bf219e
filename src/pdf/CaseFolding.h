// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <QString>

#include <string>
#include <string_view>
#include <vector>

namespace pdf {

/// Brings characters to the form in which texts are compared: composed (Unicode normalization form C), and,
/// if case is not to count, with full case folding, so that "ß" and "SS" are the same. The Turkish capital İ
/// folds to a plain i, because whoever looks for "istanbul" wants to find "İstanbul". Immutable.
class CaseFolding
{
public:
    /// Made at the first use and kept; takes some milliseconds then. Any thread.
    static const CaseFolding& ignoringCase();
    static const CaseFolding& keepingCase();

    /// The character's form, or 0 where that is not one character; then it is among specialForm().
    char32_t form(char32_t code) const { return code < basicPlane ? m_forms[code] : formBeyond(code); }
    /// The characters of such a form.
    std::u32string_view specialForm(char32_t code) const;

    /// The form of a letter with the marks that follow it.
    std::u32string formOf(const QString& text) const;

    /// Whether the character may join the one before it to a single one.
    static bool joins(char32_t code)
    {
        // The second and third parts of Hangul syllables join without being marks.
        return code >= 0x300 && (QChar::combiningClass(code) != 0 || (code >= 0x1160 && code < 0x1200));
    }

private:
    static constexpr char32_t basicPlane = 0x10000;

    explicit CaseFolding(bool ignoresCase);
    char32_t formBeyond(char32_t code) const;

    const bool m_ignoresCase;
    std::vector<char16_t> m_forms;
    struct Special
    {
        char32_t code;
        std::u32string form;
    };
    /// By code.
    std::vector<Special> m_specials;
};

} // namespace pdf
