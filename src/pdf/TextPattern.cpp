// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/TextPattern.h"

#include "pdf/CaseFolding.h"

#include <algorithm>
#include <cstddef>
#include <type_traits>

namespace pdf {
namespace {

constexpr char32_t softHyphen = 0xAD;

bool isHyphen(char32_t code)
{
    return code == '-' || code == softHyphen || code == 0x2010;
}

/// How a hyphen at the end of a line is read.
enum class Reading {
    /// As what it is: a hyphen and a line break.
    plain,
    /// As the mark of a divided word: neither is there.
    undivided,
    /// As a hyphen of the word, which was divided there: only the line break is not there.
    hyphenated,
};

/// From where to where in a text.
struct Stretch
{
    qsizetype from;
    qsizetype to;
};

} // namespace

/// One pass of a pattern over a text.
template <typename View>
class TextScan
{
public:
    TextScan(const TextPattern& pattern, View text, Reading reading)
        : m_pattern(pattern)
        , m_folding(pattern.m_folding)
        , m_text(text)
        , m_reading(reading)
        , m_places(pattern.m_units.size())
    {}

    std::vector<TextRange> matches(Stretch part)
    {
        m_matched = 0;
        m_isInSpace = false;
        for (qsizetype i = part.from; i < part.to;) {
            if (m_matched == 0 && isLatin1 && !m_pattern.m_canBegin[unit(i) & 0xFF]) {
                m_isInSpace = false;
                ++i;
            } else {
                i = step(i);
            }
        }
        return std::move(m_matches);
    }

    /// The parts of the text around hyphens at ends of lines, as far as a match may reach over them.
    std::vector<Stretch> divisions() const
    {
        const auto reach = static_cast<qsizetype>(2 * m_pattern.m_units.size()) + 16;
        std::vector<Stretch> result;
        for (qsizetype i = 0; i + 1 < m_text.size(); ++i) {
            if (!isHyphen(unit(i)) || unit(i + 1) != '\n')
                continue;
            const qsizetype from = std::max<qsizetype>(i - reach, 0);
            const qsizetype to = std::min(i + reach, m_text.size());
            if (!result.empty() && from <= result.back().to)
                result.back().to = to;
            else
                result.push_back({from, to});
        }
        return result;
    }

    bool hasDivision(TextRange range) const
    {
        for (qsizetype i = range.location; i + 1 < range.end(); ++i) {
            if (isHyphen(unit(i)) && unit(i + 1) == '\n')
                return true;
        }
        return false;
    }

private:
    static constexpr bool isLatin1 = std::is_same_v<View, QLatin1StringView>;

    /// Where a folded character comes from.
    struct Place
    {
        qsizetype start = 0;
        /// It is the first that its original folds to.
        bool isFirst = false;
    };

    char32_t unit(qsizetype index) const
    {
        if constexpr (isLatin1)
            return static_cast<unsigned char>(m_text.data()[index]);
        else
            return m_text[index].unicode();
    }

    char32_t character(qsizetype index) const
    {
        const char32_t code = unit(index);
        if (isLatin1 || !QChar::isHighSurrogate(code) || index + 1 >= m_text.size() ||
            !QChar::isLowSurrogate(unit(index + 1)))
            return code;
        return QChar::surrogateToUcs4(static_cast<char16_t>(code), static_cast<char16_t>(unit(index + 1)));
    }

    /// Takes the next character of the text and gives the index after it.
    qsizetype step(qsizetype index)
    {
        const char32_t code = character(index);
        const qsizetype next = index + (QChar::requiresSurrogates(code) ? 2 : 1);
        if (m_reading != Reading::plain && isHyphen(code) && next < m_text.size() && unit(next) == '\n') {
            if (m_reading == Reading::hyphenated && code != softHyphen)
                feed('-', {index, true}, next);
            return next + 1;
        }
        if (code == softHyphen)
            return next;
        if (QChar::isSpace(code)) {
            if (!m_isInSpace)
                feed(' ', {index, true}, next);
            m_isInSpace = true;
            return next;
        }
        m_isInSpace = false;
        if (!isLatin1 && next < m_text.size() && CaseFolding::joins(character(next)))
            return stepOverMarked(index, next);
        if (const char32_t form = m_folding.form(code))
            feed(form, {index, true}, next);
        else
            feed(m_folding.specialForm(code), index, next);
        return next;
    }

    qsizetype stepOverMarked(qsizetype index, qsizetype next)
    {
        while (next < m_text.size() && CaseFolding::joins(character(next)))
            next += QChar::requiresSurrogates(character(next)) ? 2 : 1;
        if constexpr (!isLatin1)
            feed(m_folding.formOf(m_text.mid(index, next - index).toString()), index, next);
        return next;
    }

    void feed(std::u32string_view form, qsizetype start, qsizetype end)
    {
        for (std::size_t i = 0; i < form.size(); ++i)
            feed(form[i], {start, i == 0}, i + 1 == form.size() ? end : -1);
    }

    /// Takes a folded character; `end` is where its original ends, or -1 when that folds to more.
    void feed(char32_t code, Place place, qsizetype end)
    {
        const std::u32string& units = m_pattern.m_units;
        m_places[m_nextPlace] = place;
        m_nextPlace = m_nextPlace + 1 == units.size() ? 0 : m_nextPlace + 1;
        while (m_matched > 0 && units[m_matched] != code)
            m_matched = m_pattern.m_fallback[m_matched - 1];
        if (units[m_matched] == code)
            ++m_matched;
        if (m_matched < units.size())
            return;
        // The oldest place is that of the character with which the match begins.
        const Place& first = m_places[m_nextPlace];
        if (first.isFirst && end >= 0) {
            m_matches.push_back({first.start, end - first.start});
            m_matched = 0;
        } else {
            m_matched = m_pattern.m_fallback[m_matched - 1];
        }
    }

    const TextPattern& m_pattern;
    const CaseFolding& m_folding;
    const View m_text;
    const Reading m_reading;
    std::size_t m_matched = 0;
    bool m_isInSpace = false;
    std::vector<Place> m_places;
    std::size_t m_nextPlace = 0;
    std::vector<TextRange> m_matches;
};

namespace {

bool isBefore(TextRange a, TextRange b)
{
    return a.location < b.location;
}

/// Adds the matches that no other one overlaps; both are in the order of the text.
void merge(std::vector<TextRange>& matches, const std::vector<TextRange>& more)
{
    std::vector<TextRange> merged;
    merged.reserve(matches.size() + more.size());
    std::merge(
        matches.begin(), matches.end(), more.begin(), more.end(), std::back_inserter(merged), isBefore);
    matches.clear();
    for (const TextRange match : merged) {
        if (matches.empty() || match.location >= matches.back().end())
            matches.push_back(match);
    }
}

} // namespace

TextPattern::TextPattern(const QString& text, FindOptions options)
    : m_folding(
          options.testFlag(FindOption::caseInsensitive) ? CaseFolding::ignoringCase()
                                                        : CaseFolding::keepingCase())
{
    bool isInSpace = false;
    for (const char32_t code : m_folding.formOf(text)) {
        const bool isSpace = QChar::isSpace(code);
        if (isSpace && !isInSpace)
            m_units += U' ';
        else if (!isSpace && code != softHyphen)
            m_units += code;
        isInSpace = isSpace;
    }
    m_fallback.resize(m_units.size());
    for (std::size_t i = 1, matched = 0; i < m_units.size(); ++i) {
        while (matched > 0 && m_units[matched] != m_units[i])
            matched = m_fallback[matched - 1];
        if (m_units[matched] == m_units[i])
            ++matched;
        m_fallback[i] = matched;
    }
    if (isEmpty())
        return;
    // Texts have no null characters.
    for (char32_t code = 1; code < m_canBegin.size(); ++code) {
        const char32_t form = m_folding.form(code);
        const char32_t first = QChar::isSpace(code) ? U' ' : form ? form : m_folding.specialForm(code)[0];
        m_canBegin[code] = first == m_units.front() || isHyphen(code);
    }
}

std::vector<TextRange> TextPattern::matches(const CompactText& text) const
{
    std::vector<TextRange> result;
    if (isEmpty())
        return result;
    text.visit([&]<typename View>(View view) {
        TextScan<View> plain(*this, view, Reading::plain);
        result = plain.matches({0, view.size()});
        for (const Stretch part : plain.divisions()) {
            for (const Reading reading : {Reading::undivided, Reading::hyphenated}) {
                TextScan<View> scan(*this, view, reading);
                auto found = scan.matches(part);
                std::erase_if(found, [&](TextRange match) { return !scan.hasDivision(match); });
                merge(result, found);
            }
        }
    });
    return result;
}

} // namespace pdf
