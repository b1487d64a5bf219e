// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <QStringView>

#include <unicode/uchar.h>
#include <unicode/utf16.h>

#include <algorithm>
#include <limits>

namespace quillo {

/// A stretch of a text; offsets are UTF-16 code units.
struct TextRange
{
    qsizetype start;
    qsizetype end;

    bool operator==(const TextRange&) const = default;
};

/// A text as the scanners read it: by offsets of UTF-16 units, with digits and spaces as ICU's regular
/// expressions mean them (\d is every decimal digit of Unicode, \s all of its white space). Reading outside
/// of the text gives NUL, which is neither and stands in no pattern. A look at one character costs constant
/// time.
class ScannedText
{
public:
    static constexpr qsizetype nowhere = -1;

    explicit ScannedText(QStringView text)
        : m_units(text.utf16())
        , m_size(text.size())
    {}

    qsizetype size() const { return m_size; }
    QStringView view() const { return {m_units, m_size}; }

    char16_t unit(qsizetype at) const
    {
        return static_cast<std::size_t>(at) < static_cast<std::size_t>(m_size) ? m_units[at] : u'\0';
    }

    /// All white space lies in the basic plane, so a unit tells.
    static bool isSpaceUnit(char16_t unit)
    {
        if (unit < 0x80)
            return unit == u' ' || (unit >= u'\t' && unit <= u'\r');
        return u_isUWhiteSpace(unit) != 0;
    }
    bool isSpace(qsizetype at) const { return isSpaceUnit(unit(at)); }

    /// The number of units of the digit that begins here; 0 when none does.
    int digitAt(qsizetype at) const
    {
        const char16_t first = unit(at);
        if (first < firstDigitAboveAscii)
            return first >= u'0' && first <= u'9' ? 1 : 0;
        if (!U16_IS_LEAD(first))
            return u_isdigit(first) ? 1 : 0;
        const char16_t second = unit(at + 1);
        return U16_IS_TRAIL(second) && u_isdigit(U16_GET_SUPPLEMENTARY(first, second)) ? 2 : 0;
    }

    /// The number of units of the digit that ends here; 0 when none does.
    int digitBefore(qsizetype at) const
    {
        const char16_t last = unit(at - 1);
        if (!U16_IS_TRAIL(last))
            return digitAt(at - 1);
        return digitAt(at - 2) == 2 ? 2 : 0;
    }

    /// The offset after exactly so many digits, or `nowhere`.
    qsizetype afterDigits(qsizetype at, int count) const
    {
        for (; count > 0; --count) {
            const int length = digitAt(at);
            if (length == 0)
                return nowhere;
            at += length;
        }
        return at;
    }

    /// The offset of the first of the digits that end at `at`: of at most `most` of them, none beginning
    /// before `limit`.
    qsizetype beforeDigits(qsizetype at, qsizetype most, qsizetype limit) const
    {
        for (; most > 0; --most) {
            const int length = digitBefore(at);
            if (length == 0 || at - length < limit)
                break;
            at -= length;
        }
        return at;
    }
    qsizetype beforeAllDigits(qsizetype at, qsizetype limit) const
    {
        return beforeDigits(at, std::numeric_limits<qsizetype>::max(), limit);
    }

    qsizetype afterSpaces(qsizetype at) const
    {
        while (isSpace(at))
            ++at;
        return at;
    }
    qsizetype beforeSpaces(qsizetype at) const
    {
        while (isSpace(at - 1))
            --at;
        return at;
    }

    /// The offset of the next digit, colon or at sign, or of something that might be a digit; the text's size
    /// when there is none. Every match of every pattern has one of these, and ordinary text has few.
    qsizetype nextTrigger(qsizetype at) const
    {
        // Triggers come in bunches, so the next one may be near; else blocks without branches inside, which
        // the compiler turns into vector instructions.
        constexpr qsizetype near = 8;
        constexpr qsizetype block = 32;
        for (const qsizetype end = std::min(at + near, m_size); at < end; ++at) {
            if (isTrigger(m_units[at]))
                return at;
        }
        while (at + block <= m_size && !hasTrigger<block>(m_units + at))
            at += block;
        while (at < m_size && !isTrigger(m_units[at]))
            ++at;
        return at;
    }

private:
    static constexpr char16_t firstDigitAboveAscii = 0x0660;

    static bool isTrigger(char16_t unit)
    {
        // The colon follows upon the nine.
        const bool digitOrColon = static_cast<char16_t>(unit - u'0') <= u':' - u'0';
        return static_cast<int>(digitOrColon) | static_cast<int>(unit == u'@') |
               static_cast<int>(unit >= firstDigitAboveAscii);
    }

    template <qsizetype count>
    static bool hasTrigger(const char16_t* units)
    {
        int any = 0;
        for (qsizetype i = 0; i < count; ++i)
            any |= static_cast<int>(isTrigger(units[i]));
        return any != 0;
    }

    const char16_t* m_units;
    qsizetype m_size;
};

} // namespace quillo
