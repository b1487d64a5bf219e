// SPDX-License-Identifier: AGPL-3.0-or-later
#include "understanding/KeywordAutomaton.h"

#include <QtGlobal>

#include <algorithm>
#include <iterator>

namespace quillo {
namespace {

struct Node
{
    std::vector<std::uint32_t> next;
    std::uint32_t fallback = 0;
    std::vector<std::uint32_t> keywords;
};

constexpr std::uint32_t none = UINT32_MAX;

} // namespace

KeywordAutomaton::KeywordAutomaton(std::span<const QStringView> keywords)
    : m_keywordCount(keywords.size())
{
    for (const QStringView keyword : keywords) {
        for (const QChar character : keyword) {
            const char16_t unit = character.unicode();
            Q_ASSERT(unit < m_symbols.size() && !(unit >= u'A' && unit <= u'Z'));
            if (m_symbols[unit] == otherSymbol)
                m_symbols[unit] = static_cast<std::uint8_t>(m_symbolCount++);
        }
    }
    for (char16_t letter = u'a'; letter <= u'z'; ++letter)
        m_symbols[letter - u'a' + u'A'] = m_symbols[letter];

    // The tree of the keywords.
    std::vector<Node> nodes(1, Node{std::vector<std::uint32_t>(m_symbolCount, none), 0, {}});
    for (std::size_t index = 0; index < keywords.size(); ++index) {
        std::uint32_t at = 0;
        for (const QChar character : keywords[index]) {
            const std::uint8_t symbol = m_symbols[character.unicode()];
            if (nodes[at].next[symbol] == none) {
                nodes[at].next[symbol] = static_cast<std::uint32_t>(nodes.size());
                nodes.push_back({std::vector<std::uint32_t>(m_symbolCount, none), 0, {}});
            }
            at = nodes[at].next[symbol];
        }
        nodes[at].keywords.push_back(static_cast<std::uint32_t>(index));
    }

    // Breadth first, so that a node's fallback, which is nearer to the root, is complete before the node.
    std::vector<std::uint32_t> queue{0};
    for (std::size_t i = 0; i < queue.size(); ++i) {
        const std::uint32_t at = queue[i];
        const std::uint32_t fallback = nodes[at].fallback;
        if (at != 0)
            std::ranges::copy(nodes[fallback].keywords, std::back_inserter(nodes[at].keywords));
        for (std::uint32_t symbol = 0; symbol < m_symbolCount; ++symbol) {
            const std::uint32_t beside = at == 0 ? 0 : nodes[fallback].next[symbol];
            std::uint32_t& next = nodes[at].next[symbol];
            if (next == none) {
                next = beside;
            } else {
                nodes[next].fallback = beside;
                queue.push_back(next);
            }
        }
    }

    std::stable_partition(
        queue.begin(), queue.end(), [&](std::uint32_t node) { return nodes[node].keywords.empty(); });
    std::vector<State> stateOf(nodes.size());
    for (std::size_t i = 0; i < queue.size(); ++i)
        stateOf[queue[i]] = static_cast<State>(i * m_symbolCount);

    m_next.reserve(nodes.size() * m_symbolCount);
    m_firstFinalState = static_cast<State>(nodes.size() * m_symbolCount);
    for (const std::uint32_t node : queue) {
        for (const std::uint32_t next : nodes[node].next)
            m_next.push_back(stateOf[next]);
        if (!nodes[node].keywords.empty()) {
            m_firstFinalState = std::min(m_firstFinalState, stateOf[node]);
            m_keywordsOfFinalState.push_back(std::move(nodes[node].keywords));
        }
    }
}

std::vector<std::optional<qsizetype>> KeywordAutomaton::firstEnds(QStringView text) const
{
    std::vector<std::optional<qsizetype>> ends(m_keywordCount);
    search(text, [&](std::uint32_t keyword, qsizetype end) {
        if (!ends[keyword])
            ends[keyword] = end;
    });
    return ends;
}

} // namespace quillo
