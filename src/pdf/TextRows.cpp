// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/TextRows.h"

#include "pdf/BidiOrder.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <utility>
#include <vector>

namespace pdf {
namespace {

// In font sizes: how far feet may lie apart, how far cells may overlap, and what gap is a space.
constexpr float sameHeight = 0.3F;
constexpr float sideOverlap = 0.3F;
constexpr float spaceGap = 0.15F;
// The same for lines that come anywhere in the content, which have to be one line to the eye.
constexpr float sameFeet = 0.15F;
constexpr float touchingGap = 0.5F;
constexpr float similarSize = 0.8F;

// What has more pieces than this is no prose.
constexpr std::size_t mostLines = 3000;
constexpr std::size_t none = std::numeric_limits<std::size_t>::max();

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

bool isTouching(const TextLine& left, const TextLine& right)
{
    const float size = std::min(left.size, right.size);
    const float gap = right.extent.x0 - left.extent.x1;
    return gap > -size * sideOverlap && gap < size * touchingGap && right.extent.x0 > left.extent.x0 &&
           size > similarSize * std::max(left.size, right.size) &&
           left.direction.x * right.direction.x + left.direction.y * right.direction.y >= sameDirection;
}

/// Lines that are to be one, from left to right, as indices.
using Chain = std::vector<std::size_t>;

class RowJoiner
{
public:
    explicit RowJoiner(TextLines& text)
        : m_text(text)
    {}

    void joinRowsToTheLeft()
    {
        std::vector<Chain> chains;
        for (std::size_t start = 0; start < m_text.lines.size();) {
            std::size_t end = start + 1;
            while (end < m_text.lines.size() && isLeftOf(m_text.lines[end], m_text.lines[end - 1]) &&
                   runsToTheRight(m_text.lines[end]) && runsToTheRight(m_text.lines[end - 1]))
                ++end;
            if (end - start > 1) {
                Chain& chain = chains.emplace_back();
                for (std::size_t i = end; i-- > start;)
                    chain.push_back(i);
            }
            start = end;
        }
        join(chains);
    }

    void joinTouching()
    {
        if (m_text.lines.size() < 2 || m_text.lines.size() > mostLines)
            return;
        findNeighbours();
        std::vector<Chain> chains;
        for (std::size_t i = 0; i < m_text.lines.size(); ++i) {
            if (m_hasPrevious[i] || m_next[i] == none)
                continue;
            Chain& chain = chains.emplace_back();
            for (std::size_t at = i; at != none; at = m_next[at])
                chain.push_back(at);
        }
        join(chains);
    }

private:
    bool runsToTheRight(const TextLine& line) const
    {
        const auto first = m_text.characters.begin() + static_cast<std::ptrdiff_t>(line.first);
        return std::none_of(
            first, first + static_cast<std::ptrdiff_t>(line.count),
            [](const TextCharacter& character) { return isRightToLeft(character.code); });
    }

    /// For each line the one that begins where it ends, at the same height.
    void findNeighbours()
    {
        const std::vector<TextLine>& lines = m_text.lines;
        m_next.assign(lines.size(), none);
        m_hasPrevious.assign(lines.size(), false);
        std::vector<std::size_t> byHeight(lines.size());
        std::iota(byHeight.begin(), byHeight.end(), std::size_t{0});
        std::sort(byHeight.begin(), byHeight.end(), [&](std::size_t a, std::size_t b) {
            return lines[a].extent.y1 < lines[b].extent.y1;
        });
        for (std::size_t i = 0; i < byHeight.size(); ++i) {
            const TextLine& line = lines[byHeight[i]];
            for (std::size_t j = i + 1; j < byHeight.size(); ++j) {
                const TextLine& other = lines[byHeight[j]];
                if (other.extent.y1 - line.extent.y1 > line.size * sameFeet)
                    break;
                connect(byHeight[i], byHeight[j]);
                connect(byHeight[j], byHeight[i]);
            }
        }
    }

    void connect(std::size_t left, std::size_t right)
    {
        if (m_next[left] != none || m_hasPrevious[right])
            return;
        const TextLine& line = m_text.lines[left];
        const TextLine& next = m_text.lines[right];
        if (!isTouching(line, next) || isParted(left, right) || !runsToTheRight(line) ||
            !runsToTheRight(next))
            return;
        m_next[left] = right;
        m_hasPrevious[right] = true;
    }

    /// Whether a piece at another height is read between the two, such as an exponent.
    bool isParted(std::size_t left, std::size_t right) const
    {
        if (right != left + 2)
            return false;
        const TextLine& line = m_text.lines[left];
        const fz_rect& between = m_text.lines[left + 1].extent;
        const float slack = line.size * sideOverlap;
        return between.x0 > line.extent.x1 - slack && between.x1 < m_text.lines[right].extent.x0 + slack;
    }

    /// Each chain becomes one line in the place of that of its lines which comes first.
    void join(const std::vector<Chain>& chains)
    {
        if (chains.empty())
            return;
        std::vector<const Chain*> chainAt(m_text.lines.size(), nullptr);
        std::vector<bool> isJoined(m_text.lines.size(), false);
        for (const Chain& chain : chains) {
            chainAt[*std::min_element(chain.begin(), chain.end())] = &chain;
            for (const std::size_t index : chain)
                isJoined[index] = true;
        }
        std::vector<TextLine> lines;
        for (std::size_t i = 0; i < m_text.lines.size(); ++i) {
            if (chainAt[i])
                lines.push_back(row(*chainAt[i]));
            else if (!isJoined[i])
                lines.push_back(m_text.lines[i]);
        }
        m_text.lines = std::move(lines);
    }

    /// Its characters are added at the end of all.
    TextLine row(const Chain& chain)
    {
        TextLine row = m_text.lines[chain.front()];
        row.first = m_text.characters.size();
        for (const std::size_t index : chain) {
            const TextLine line = m_text.lines[index];
            for (std::size_t at = line.first; at < line.first + line.count; ++at) {
                if (at == line.first && index != chain.front())
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
    // What follows each line, and whether it follows one.
    std::vector<std::size_t> m_next;
    std::vector<bool> m_hasPrevious;
};

} // namespace

void joinRows(TextLines& text)
{
    RowJoiner joiner(text);
    joiner.joinRowsToTheLeft();
    joiner.joinTouching();
}

} // namespace pdf
