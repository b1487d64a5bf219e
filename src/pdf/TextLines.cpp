// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/TextLines.h"

#include "pdf/BidiOrder.h"
#include "pdf/LetterSpacing.h"

#include <QChar>
#include <QList>
#include <QString>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <optional>
#include <string>
#include <utility>

namespace pdf {
namespace {

// Distances on the page in font sizes.
constexpr float spaceGap = 0.15F;
constexpr float nearGap = 0.8F;
constexpr float overlapLimit = 0.2F;
constexpr float scriptOffset = 0.6F;
constexpr float sameLineOffset = 0.3F;
constexpr float twicePrintedOffset = 0.15F;
constexpr float coreHeight = 0.5F;
constexpr float leftwardGap = 4.0F;

// A line that is printed once more comes within so many lines.
constexpr std::size_t linesToReprint = 64;
// Looking for what is printed already ends after so many comparisons on a page; pages of text need some
// thousands. What a hostile one prints twice after that stays there twice.
constexpr std::size_t mostComparisons = 20'000'000;

// Gaps that are so few characters apart make one-letter words, or spaced letters.
constexpr std::size_t closeGaps = 3;

// Directions whose cosine is above this are the same.
constexpr float sameDirection = 0.999F;

// The start of a union of rectangles.
constexpr float farAway = std::numeric_limits<float>::max();
constexpr fz_rect nowhere = {farAway, farAway, -farAway, -farAway};

constexpr char32_t replacementCharacter = 0xFFFD;

float dot(fz_point a, fz_point b)
{
    return a.x * b.x + a.y * b.y;
}

fz_point minus(fz_point a, fz_point b)
{
    return {a.x - b.x, a.y - b.y};
}

fz_point quarterTurned(fz_point direction)
{
    return {-direction.y, direction.x};
}

/// The character as it stands in the text, or 0 when it does not.
char32_t textCharacter(int character)
{
    const auto code = static_cast<char32_t>(character);
    if (code > ' ' && code < 0x7F)
        return code;
    if (code > 0x10FFFF || (code & 0xFFFE) == 0xFFFE)
        return replacementCharacter;
    if (QChar::isSpace(code))
        return ' ';
    if (QChar::category(code) == QChar::Other_Control || code == 0xFEFF)
        return 0;
    return code;
}

bool isMark(int character)
{
    return QChar::category(static_cast<char32_t>(character)) == QChar::Mark_NonSpacing;
}

/// Ligatures of Latin, Armenian, Hebrew and Arabic letters, and the shapes that Arabic letters take beside
/// others.
bool isPresentationForm(char32_t code)
{
    return (code >= 0xFB00 && code <= 0xFDFF) || (code >= 0xFE70 && code <= 0xFEFC);
}

/// The letters that a presentation form stands for. Some are written as marks over a space, which goes.
QString lettersOf(char32_t code)
{
    QString letters = QString::fromUcs4(&code, 1).normalized(QString::NormalizationForm_KC);
    if (letters.size() > 1 && letters.front() == QLatin1Char(' '))
        letters.remove(0, 1);
    return letters;
}

/// What the characters of one glyph stand for: ligatures as letters, surrogates as what a pair of them means.
std::u32string lettersOf(const std::u32string& characters)
{
    std::u32string letters;
    for (std::size_t i = 0; i < characters.size(); ++i) {
        const char32_t code = characters[i];
        const char32_t next = i + 1 < characters.size() ? characters[i + 1] : 0;
        if (QChar::isHighSurrogate(code) && QChar::isLowSurrogate(next)) {
            letters.push_back(
                QChar::surrogateToUcs4(static_cast<char16_t>(code), static_cast<char16_t>(next)));
            ++i;
        } else if (QChar::isSurrogate(code)) {
            letters.push_back(replacementCharacter);
        } else if (isPresentationForm(code)) {
            for (const uint letter : lettersOf(code).toUcs4())
                letters.push_back(letter);
        } else if (code != 0) {
            letters.push_back(code);
        }
    }
    return letters;
}

class LineBuilder
{
public:
    explicit LineBuilder(std::size_t glyphCount) { m_result.characters.reserve(glyphCount + glyphCount / 4); }

    void add(const GlyphRun& run, const Glyph& glyph)
    {
        if (glyph.character < 0) {
            if (!m_isDropped)
                widenLastGlyph(run, glyph);
        } else if (glyph.isContinuation && m_hasGlyph) {
            if (m_isDropped)
                return;
            flushLast();
            m_cluster.push_back(textCharacter(glyph.character));
        } else {
            const float gap = m_hasGlyph ? gapBefore(glyph) : 0;
            const bool continues = m_hasGlyph && goesOn(run, glyph, gap);
            m_isDropped = isPrintedTwice(run, glyph, continues, gap);
            if (m_isDropped)
                return;
            place(run, glyph, continues, gap);
            m_run = &run;
            m_glyph = glyph;
            m_code = textCharacter(glyph.character);
            m_hasGlyph = true;
        }
    }

    TextLines takeResult()
    {
        flush();
        endLine();
        return std::move(m_result);
    }

private:
    TextLine& line() { return m_result.lines.back(); }
    std::vector<TextCharacter>& characters() { return m_result.characters; }

    fz_point end() const
    {
        return {
            m_glyph.start.x + m_run->direction.x * m_glyph.advance,
            m_glyph.start.y + m_run->direction.y * m_glyph.advance};
    }

    /// Some writers make text bold by printing it twice: each letter, each word or each line.
    bool isPrintedTwice(const GlyphRun& run, const Glyph& glyph, bool continues, float gap)
    {
        // What goes on to the right lies where nothing is yet.
        const bool isAhead = continues && gap > -run.size * overlapLimit;
        if (!m_hasGlyph || (isAhead && !m_reprinted))
            return false;
        const float limit = std::min(run.size * twicePrintedOffset, glyph.advance / 2);
        const fz_point offset = minus(glyph.start, m_glyph.start);
        if (glyph.character == m_glyph.character && std::fabs(offset.x) < limit &&
            std::fabs(offset.y) < limit)
            return true;
        if (m_reprinted && isReprinted(run, glyph, limit))
            return true;
        m_reprinted.reset();
        if (isAhead)
            return false;
        m_reprinted = findPrinted(run, glyph, limit);
        return m_reprinted.has_value();
    }

    /// Whether the glyph is the next one of those that are printed already.
    bool isReprinted(const GlyphRun& run, const Glyph& glyph, float limit)
    {
        flush();
        const char32_t code = textCharacter(glyph.character);
        std::size_t& next = *m_reprinted;
        while (next < characters().size() && characters()[next].code == ' ' && code != ' ')
            ++next;
        if (next >= characters().size() || !isAt(characters()[next], code, glyphBox(run, glyph), limit))
            return false;
        ++next;
        return true;
    }

    bool isAt(const TextCharacter& character, char32_t code, const fz_rect& box, float limit) const
    {
        return character.code == code && std::fabs(character.box.x0 - box.x0) < limit &&
               std::fabs(character.box.y1 - box.y1) < limit;
    }

    /// The character after the one that stands where this one is to be printed.
    std::optional<std::size_t> findPrinted(const GlyphRun& run, const Glyph& glyph, float limit)
    {
        const char32_t code = textCharacter(glyph.character);
        const fz_rect box = glyphBox(run, glyph);
        const float from = dot(glyph.start, run.direction);
        const float foot = dot(glyph.start, quarterTurned(run.direction));
        const std::vector<TextLine>& lines = m_result.lines;
        std::size_t end = m_result.characters.size();
        for (std::size_t i = lines.size(); i > 0 && i + linesToReprint > lines.size(); --i) {
            if (m_comparisons > mostComparisons)
                return std::nullopt;
            ++m_comparisons;
            const TextLine& line = lines[i - 1];
            const bool isInside = from > line.extent.x0 - limit && from < line.extent.x1 &&
                                  foot > line.extent.y0 && foot < line.extent.y1 + limit;
            if (isInside && dot(run.direction, line.direction) >= sameDirection) {
                for (std::size_t at = line.first; at < end; ++at, ++m_comparisons) {
                    if (isAt(m_result.characters[at], code, box, limit))
                        return at + 1;
                }
            }
            end = line.first;
        }
        return std::nullopt;
    }

    /// Opens a new line for the glyph, or bridges the gap to the last one.
    void place(const GlyphRun& run, const Glyph& glyph, bool continues, float gap)
    {
        if (m_hasGlyph && goesOnLeftwards(run, glyph)) {
            flush();
            m_isScattered = true;
        } else if (continues) {
            if (gap < -run.size * overlapLimit && gap > -m_glyph.advance && !isMark(glyph.character))
                m_glyph.advance += gap;
            flush();
            const bool isSpaced = glyph.character == ' ' || line().first == characters().size() ||
                                  characters().back().code == ' ';
            if (gap > run.size * spaceGap && !isSpaced && !m_isScattered)
                addGap(gap, run.size);
        } else {
            flush();
            endLine();
            m_result.lines.emplace_back();
            line().first = characters().size();
            line().direction = run.direction;
            line().extent = nowhere;
            line().top = farAway;
            line().foot = -farAway;
        }
        extendLine(run, glyph);
    }

    void addGap(float gap, float size)
    {
        const std::size_t position = characters().size() - line().first;
        if (!m_gaps.empty() && position - m_gaps.back().position <= closeGaps)
            ++m_closeGapCount;
        m_gaps.push_back({position, gap, size});
        addCharacter(' ', *m_run, {' ', end(), gap, false});
    }

    /// From where the last glyph ends to where the next one starts. Where a font tells other widths than the
    /// document, glyphs seem to overlap; then this is less than 0.
    float gapBefore(const Glyph& glyph) const
    {
        return dot(minus(glyph.start, end()), m_result.lines.back().direction);
    }

    bool hasLinesDirection(const GlyphRun& run) const
    {
        return run.isVertical == m_run->isVertical &&
               dot(run.direction, m_result.lines.back().direction) >= sameDirection;
    }

    float distanceAcross(const Glyph& glyph) const
    {
        const fz_point across = quarterTurned(m_result.lines.back().direction);
        return std::fabs(dot(minus(glyph.start, m_glyph.start), across));
    }

    bool goesOn(const GlyphRun& run, const Glyph& glyph, float gap) const
    {
        if (!hasLinesDirection(run))
            return false;
        const TextLine& last = m_result.lines.back();
        const float size = std::max(run.size, m_run->size);
        // Right after the last glyph a superscript is welcome.
        const bool isForward = dot(minus(glyph.start, m_glyph.start), last.direction) > 0;
        if (gap < nearGap * size && (isForward || gap > -nearGap * size))
            return distanceAcross(glyph) < size * scriptOffset;
        // Further away it has to be the very line, and a part of it where nothing stands yet.
        return gap > 0 && distanceAcross(glyph) < size * sameLineOffset &&
               dot(glyph.start, last.direction) > last.extent.x1 - size * sameLineOffset;
    }

    /// Some writers place right-to-left text glyph by glyph in the order of reading, each to the left of what
    /// is there, with numbers in between that run to the right.
    bool goesOnLeftwards(const GlyphRun& run, const Glyph& glyph) const
    {
        if (!m_isScattered && !isRightToLeft(static_cast<char32_t>(glyph.character)))
            return false;
        if (run.isVertical || !hasLinesDirection(run))
            return false;
        const TextLine& last = m_result.lines.back();
        const float size = std::max(run.size, m_run->size);
        const float gap = last.extent.x0 - dot(glyph.start, last.direction) - glyph.advance;
        return distanceAcross(glyph) < size * sameLineOffset && gap > -size * sameLineOffset &&
               gap < size * leftwardGap;
    }

    void extendLine(const GlyphRun& run, const Glyph& glyph)
    {
        const float from = dot(glyph.start, line().direction);
        const float foot = dot(glyph.start, quarterTurned(line().direction));
        fz_rect& extent = line().extent;
        line().size = std::max(line().size, run.size);
        extent.x0 = std::min(extent.x0, from);
        extent.x1 = std::max(extent.x1, from + glyph.advance);
        extent.y0 = std::min(extent.y0, foot - run.size * coreHeight);
        extent.y1 = std::max(extent.y1, foot);
        line().top = std::min(line().top, foot + run.top);
        line().foot = std::max(line().foot, foot + run.foot);
    }

    /// The last character has one more glyph.
    void widenLastGlyph(const GlyphRun& run, const Glyph& glyph)
    {
        if (!m_hasGlyph || !goesOn(run, glyph, gapBefore(glyph)))
            return;
        m_glyph.advance += glyph.advance;
        extendLine(run, glyph);
    }

    void flushLast()
    {
        if (m_code != 0)
            m_cluster.push_back(m_code);
        m_code = 0;
    }

    /// Writes the characters of the last glyph, each with its part of the glyph's width, from left to right.
    void flush()
    {
        if (m_cluster.empty() && !isPresentationForm(m_code) && !QChar::isSurrogate(m_code)) {
            if (m_code != 0)
                addCharacter(m_code, *m_run, m_glyph);
            m_code = 0;
            return;
        }
        flushLast();
        std::u32string letters = lettersOf(m_cluster);
        m_cluster.clear();
        if (std::any_of(letters.begin(), letters.end(), isRightToLeft))
            std::reverse(letters.begin(), letters.end());
        const auto count = static_cast<float>(letters.size());
        for (std::size_t i = 0; i < letters.size(); ++i) {
            const auto position = static_cast<float>(i);
            addCharacter(letters[i], *m_run, m_glyph, position / count, (position + 1) / count);
        }
    }

    void addCharacter(char32_t code, const GlyphRun& run, const Glyph& glyph, float from = 0, float to = 1)
    {
        m_hasRightToLeft = m_hasRightToLeft || isRightToLeft(code);
        const float start = dot(glyph.start, line().direction);
        const float one = start + glyph.advance * from;
        const float other = start + glyph.advance * to;
        characters().push_back(
            {code, glyphBox(run, glyph, from, to), std::min(one, other), std::max(one, other), false});
    }

    void endLine()
    {
        if (m_result.lines.empty())
            return;
        if (m_closeGapCount > 1)
            joinSpacedLetters(characters(), line().first, m_gaps);
        m_gaps.clear();
        m_closeGapCount = 0;
        if (m_hasRightToLeft)
            orderLine();
        m_hasRightToLeft = false;
        m_isScattered = false;
        line().count = characters().size() - line().first;
        if (line().count == 0)
            m_result.lines.pop_back();
    }

    void orderLine()
    {
        const auto start = characters().begin() + static_cast<std::ptrdiff_t>(line().first);
        std::vector<TextCharacter> ordered(start, characters().end());
        if (m_isScattered)
            sortByPlace(ordered, (line().foot - line().top) * spaceGap);
        putInReadingOrder(ordered);
        characters().resize(line().first);
        characters().insert(characters().end(), ordered.begin(), ordered.end());
    }

    TextLines m_result;
    /// The current line has right-to-left letters, and some that were placed to the left of others.
    bool m_hasRightToLeft = false;
    bool m_isScattered = false;
    /// The spaces in the current line that bridge gaps, and how many of them have another one close by.
    std::vector<LetterGap> m_gaps;
    std::size_t m_closeGapCount = 0;

    /// The last glyph was printed before and is not taken again, with all that belongs to it.
    bool m_isDropped = false;
    /// Where text is being printed once more, the character that would be next.
    std::optional<std::size_t> m_reprinted;
    std::size_t m_comparisons = 0;

    // The last glyph, whose characters are not written yet because more may come.
    bool m_hasGlyph = false;
    const GlyphRun* m_run = nullptr;
    Glyph m_glyph;
    char32_t m_code = 0;
    std::u32string m_cluster;
};

} // namespace

TextLines textLines(const GlyphCollector& text)
{
    LineBuilder builder(text.glyphs().size());
    for (std::size_t i = 0; i < text.runs().size(); ++i) {
        const GlyphRun& run = text.runs()[i];
        const std::size_t end =
            i + 1 < text.runs().size() ? text.runs()[i + 1].firstGlyph : text.glyphs().size();
        for (std::size_t glyph = run.firstGlyph; glyph < end; ++glyph)
            builder.add(run, text.glyphs()[glyph]);
    }
    return builder.takeResult();
}

} // namespace pdf
