// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/TextRows.h"

#include "pdf/BidiOrder.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace pdf {
namespace {

// In font sizes: how far feet may lie apart, how far cells may overlap, and what gap is a space.
constexpr float sameHeight = 0.3F;
constexpr float sideOverlap = 0.3F;
constexpr float spaceGap = 0.15F;

constexpr float sameDirection = 0.999F;

bool isLeftOf(const TextLine& line, const TextLine& right)
{
    const float size = std::min(line.size, right.size);
    return line.direction.x * right.direction.x + line.direction.y * right.direction.y >= sameDirection &&
           std::fabs(line.extent.y1 - right.extent.y1) < size * sameHeight &&
           line.extent.x1 < right.extent.x0 + size * sideOverlap;
}

/// As high as both, or as wide where the line does not run across the page.
fz_rect boxBetween(const fz_rect& a, const fz_rect& b)
{
    fz_rect box = {std::min(a.x0, b.x0), std::min(a.y0, b.y0), std::max(a.x1, b.x1), std::max(a.y1, b.y1)};
    if (a.x1 <= b.x0 || b.x1 <= a.x0) {
        box.x0 = std::min(a.x1, b.x1);
        box.x1 = std::max(a.x0, b.x0);
    } else if (a.y1 <= b.y0 || b.y1 <= a.y0) {
        box.y0 = std::min(a.y1, b.y1);
        box.y1 = std::max(a.y0, b.y0);
    }
    return box;
}

class RowJoiner
{
public:
    explicit RowJoiner(TextLines& text)
        : m_text(text)
    {}

    void join()
    {
        std::vector<TextLine> lines;
        for (std::size_t start = 0; start < m_text.lines.size();) {
            std::size_t end = start + 1;
            while (end < m_text.lines.size() && isLeftOf(m_text.lines[end], m_text.lines[end - 1]) &&
                   runsToTheRight(m_text.lines[end]) && runsToTheRight(m_text.lines[end - 1]))
                ++end;
            // Most pages have nothing to join; theirs stay where they are.
            if (end - start > 1 && lines.empty())
                lines.assign(m_text.lines.begin(), m_text.lines.begin() + static_cast<std::ptrdiff_t>(start));
            if (end - start > 1)
                lines.push_back(row(start, end));
            else if (!lines.empty() || m_isChanged)
                lines.push_back(m_text.lines[start]);
            start = end;
        }
        if (m_isChanged)
            m_text.lines = std::move(lines);
    }

private:
    bool runsToTheRight(const TextLine& line) const
    {
        const auto first = m_text.characters.begin() + static_cast<std::ptrdiff_t>(line.first);
        return std::none_of(
            first, first + static_cast<std::ptrdiff_t>(line.count),
            [](const TextCharacter& character) { return isRightToLeft(character.code); });
    }

    /// Its characters are added at the end of all.
    TextLine row(std::size_t start, std::size_t end)
    {
        m_isChanged = true;
        TextLine row = m_text.lines[end - 1];
        row.first = m_text.characters.size();
        for (std::size_t i = end; i-- > start;) {
            const TextLine line = m_text.lines[i];
            for (std::size_t at = line.first; at < line.first + line.count; ++at) {
                if (at == line.first && i + 1 < end)
                    addSpace(m_text.characters[at], line.size);
                m_text.characters.push_back(TextCharacter(m_text.characters[at]));
            }
            row.extent = {
                std::min(row.extent.x0, line.extent.x0), std::min(row.extent.y0, line.extent.y0),
                std::max(row.extent.x1, line.extent.x1), std::max(row.extent.y1, line.extent.y1)};
            row.top = std::min(row.top, line.top);
            row.foot = std::max(row.foot, line.foot);
            row.size = std::max(row.size, line.size);
        }
        row.count = m_text.characters.size() - row.first;
        return row;
    }

    void addSpace(const TextCharacter& next, float size)
    {
        const TextCharacter& last = m_text.characters.back();
        if (last.code == ' ' || next.code == ' ' || next.from - last.to <= size * spaceGap)
            return;
        m_text.characters.push_back({' ', boxBetween(last.box, next.box), last.to, next.from, false});
    }

    TextLines& m_text;
    bool m_isChanged = false;
};

} // namespace

void joinRows(TextLines& text)
{
    RowJoiner(text).join();
}

} // namespace pdf
