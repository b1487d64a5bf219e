// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/ReadingOrder.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace pdf {
namespace {

// Comparing all pairs is a matter of milliseconds up to here. What has more pieces than this is no prose, and
// the order of its content is as good as any.
constexpr std::size_t mostLines = 3000;

bool isReadBefore(const TextLine& a, const TextLine& b)
{
    if (a.extent.y1 > b.extent.y0)
        return false;
    const float overlap = std::min(a.extent.x1, b.extent.x1) - std::max(a.extent.x0, b.extent.x0);
    const float shorter = std::min(a.extent.x1 - a.extent.x0, b.extent.x1 - b.extent.x0);
    return overlap >= shorter / 2 && a.direction.x * b.direction.x + a.direction.y * b.direction.y > 0.999F;
}

bool isInOrder(const std::vector<TextLine>& lines)
{
    for (std::size_t later = 1; later < lines.size(); ++later) {
        for (std::size_t earlier = 0; earlier < later; ++earlier) {
            if (isReadBefore(lines[later], lines[earlier]))
                return false;
        }
    }
    return true;
}

class Sorter
{
public:
    explicit Sorter(const std::vector<TextLine>& lines)
        : m_lines(lines)
        , m_isTaken(lines.size(), false)
    {}

    std::vector<std::size_t> sorted()
    {
        for (std::size_t i = 0; i < m_lines.size(); ++i)
            take(i);
        return std::move(m_order);
    }

private:
    /// Takes a line after all that has to be read before it. Each of those lies higher, so this ends.
    void take(std::size_t index)
    {
        if (m_isTaken[index])
            return;
        m_isTaken[index] = true;
        for (std::size_t other = 0; other < m_lines.size(); ++other) {
            if (!m_isTaken[other] && isReadBefore(m_lines[other], m_lines[index]))
                take(other);
        }
        m_order.push_back(index);
    }

    const std::vector<TextLine>& m_lines;
    std::vector<bool> m_isTaken;
    std::vector<std::size_t> m_order;
};

} // namespace

std::vector<std::size_t> readingOrder(const std::vector<TextLine>& lines)
{
    if (lines.size() <= mostLines && !isInOrder(lines))
        return Sorter(lines).sorted();
    std::vector<std::size_t> order(lines.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    return order;
}

} // namespace pdf
