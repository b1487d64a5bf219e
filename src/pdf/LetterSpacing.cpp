// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/LetterSpacing.h"

#include <QChar>

#include <algorithm>

namespace pdf {
namespace {

// In font sizes. Kerning and rounding stay below the first; a gap above the second ends a word however its
// letters are spaced.
constexpr float leastSpacing = 0.08F;
constexpr float widestSpacing = 1.2F;
// What a space has more than the gaps between letters: a space is 0.2 to 0.3 wide in most fonts.
constexpr float excessOfSpace = 0.12F;

// Fewer gaps tell nothing.
constexpr std::size_t leastGaps = 3;
// Lone letters that are one spaced word rather than words of one letter.
constexpr std::size_t leastLoneLetters = 5;

/// From one character to the next one that is not a space, in font sizes.
struct Step
{
    float gap;
    /// The space that stands for the gap, if one does.
    std::size_t space;
    bool hasSpace;
    /// Both are letters or figures. Leaders of dots and operators of formulas are spaced for themselves.
    bool isInWord;
};

bool isOfWord(char32_t code)
{
    return QChar::isLetterOrNumber(code);
}

class Joiner
{
public:
    Joiner(std::vector<TextCharacter>& characters, std::size_t first)
        : m_characters(characters)
        , m_first(first)
    {}

    void join(const std::vector<LetterGap>& gaps)
    {
        auto gap = gaps.begin();
        for (std::size_t i = m_first; i < m_characters.size(); ++i) {
            if (gap != gaps.end() && m_first + gap->position == i) {
                const float width = gap->width / gap->size;
                if (width > widestSpacing)
                    endStretch();
                else
                    m_steps.push_back({width, i, true, isBetweenLetters(i)});
                m_size = gap->size;
                ++gap;
            } else if (m_characters[i].code == ' ') {
                m_hasOwnSpaces = true;
            } else {
                addCharacter(i, gap == gaps.end() ? m_size : gap->size);
            }
        }
        endStretch();
        m_characters.erase(
            std::remove_if(
                m_characters.begin() + static_cast<std::ptrdiff_t>(m_first), m_characters.end(),
                [](const TextCharacter& character) { return character.code == 0; }),
            m_characters.end());
    }

private:
    bool isBetweenLetters(std::size_t space) const
    {
        return space > m_first && space + 1 < m_characters.size() && isOfWord(m_characters[space - 1].code) &&
               isOfWord(m_characters[space + 1].code);
    }

    void addCharacter(std::size_t i, float size)
    {
        const bool isFirst = i == m_first;
        if (!isFirst && m_characters[i - 1].code != ' ')
            m_steps.push_back(
                {(m_characters[i].from - m_characters[i - 1].to) / size, 0, false,
                 isOfWord(m_characters[i].code) && isOfWord(m_characters[i - 1].code)});
        m_letterCount += QChar::isLetter(m_characters[i].code) ? 1 : 0;
        ++m_characterCount;
    }

    void endStretch()
    {
        m_gaps.clear();
        for (const Step& step : m_steps) {
            if (step.isInWord)
                m_gaps.push_back(step.gap);
        }
        if (m_gaps.size() >= leastGaps) {
            const float spacing = usualGap();
            if (spacing > leastSpacing && isSpaced())
                dropSpaces(spacing + excessOfSpace);
        }
        m_steps.clear();
        m_hasOwnSpaces = false;
        m_letterCount = 0;
        m_characterCount = 0;
    }

    float usualGap()
    {
        const auto quarter = m_gaps.begin() + static_cast<std::ptrdiff_t>(m_gaps.size() / 4);
        std::nth_element(m_gaps.begin(), quarter, m_gaps.end());
        return *quarter;
    }

    bool isSpaced() const
    {
        const bool standAlone = std::all_of(
            m_steps.begin(), m_steps.end(), [](const Step& step) { return step.hasSpace || !step.isInWord; });
        return !standAlone || m_hasOwnSpaces ||
               (m_letterCount >= leastLoneLetters && m_letterCount == m_characterCount);
    }

    void dropSpaces(float limit)
    {
        for (const Step& step : m_steps) {
            if (step.hasSpace && step.gap <= limit)
                m_characters[step.space].code = 0;
        }
    }

    std::vector<TextCharacter>& m_characters;
    std::size_t m_first;
    std::vector<Step> m_steps;
    std::vector<float> m_gaps;
    float m_size = 1;
    /// What the current stretch has.
    bool m_hasOwnSpaces = false;
    std::size_t m_letterCount = 0;
    std::size_t m_characterCount = 0;
};

} // namespace

void joinSpacedLetters(
    std::vector<TextCharacter>& characters, std::size_t first, const std::vector<LetterGap>& gaps)
{
    Joiner(characters, first).join(gaps);
}

} // namespace pdf
