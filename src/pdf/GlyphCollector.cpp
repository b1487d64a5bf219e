// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/GlyphCollector.h"

#include "pdf/Limits.h"

#include <QList>
#include <QString>

#include <algorithm>
#include <cmath>

namespace pdf {
namespace {

constexpr std::size_t usualGlyphsPerPage = 4096;

// How far a glyph may stand off the line of the ones before, in font sizes.
constexpr float lineOffset = 0.6F;

} // namespace

/// Glyphs on one line.
struct GlyphCollector::Stretch
{
    GlyphRun run;
    Glyph glyph;
    std::size_t count = 1;
};

GlyphCollector::GlyphCollector()
    : GlyphCollector(limits::glyphsPerPage)
{
    m_glyphs.reserve(usualGlyphsPerPage);
}

GlyphCollector::GlyphCollector(std::size_t mostGlyphs)
    : m_mostGlyphs(mostGlyphs)
{}

void GlyphCollector::begin(const GlyphRun& run)
{
    m_runs.push_back(run);
    m_runs.back().firstGlyph = m_glyphs.size();
}

bool GlyphCollector::add(const Glyph& glyph)
{
    if (m_glyphs.size() >= m_mostGlyphs)
        return false;
    m_glyphs.push_back(glyph);
    return true;
}

std::vector<GlyphCollector::Stretch> GlyphCollector::stretchesFrom(std::size_t first) const
{
    std::vector<Stretch> stretches;
    auto nextRun =
        std::upper_bound(m_runs.begin(), m_runs.end(), first, [](std::size_t index, const GlyphRun& run) {
            return index < run.firstGlyph;
        });
    for (std::size_t i = first; i < m_glyphs.size(); ++i) {
        while (nextRun != m_runs.end() && nextRun->firstGlyph <= i)
            ++nextRun;
        const GlyphRun& run = *std::prev(nextRun);
        const Glyph& glyph = m_glyphs[i];
        if (!stretches.empty()) {
            Stretch& last = stretches.back();
            const fz_point to = {glyph.start.x - last.glyph.start.x, glyph.start.y - last.glyph.start.y};
            const fz_point along = last.run.direction;
            const float distance = to.x * along.x + to.y * along.y;
            const float off = std::fabs(to.y * along.x - to.x * along.y);
            const bool isOnLine = off < lineOffset * std::max(run.size, last.run.size) && distance >= 0;
            if (glyph.isContinuation || isOnLine) {
                last.glyph.advance = std::max(last.glyph.advance, distance + glyph.advance);
                ++last.count;
                continue;
            }
        }
        stretches.push_back({run, glyph});
    }
    return stretches;
}

bool GlyphCollector::replaceFrom(std::size_t first, const char* text)
{
    const auto characters = QString::fromUtf8(text).toUcs4();
    const auto length = static_cast<std::size_t>(characters.size());
    const std::size_t glyphCount = m_glyphs.size() - first;
    const std::vector<Stretch> stretches = stretchesFrom(first);
    if (first + length > m_mostGlyphs)
        return false;
    m_glyphs.resize(first);
    while (!m_runs.empty() && m_runs.back().firstGlyph >= first)
        m_runs.pop_back();
    std::size_t glyphsBefore = 0;
    std::size_t from = 0;
    for (const Stretch& stretch : stretches) {
        glyphsBefore += stretch.count;
        const std::size_t to = length * glyphsBefore / glyphCount;
        if (to == from)
            continue;
        m_runs.push_back(stretch.run);
        m_runs.back().firstGlyph = m_glyphs.size();
        m_glyphs.push_back(stretch.glyph);
        m_glyphs.back().isContinuation = false;
        m_glyphs.back().character = static_cast<int>(characters[static_cast<qsizetype>(from++)]);
        for (; from < to; ++from) {
            const auto code = static_cast<int>(characters[static_cast<qsizetype>(from)]);
            m_glyphs.push_back({code, stretch.glyph.start, 0, true});
        }
    }
    return true;
}

fz_rect glyphBox(const GlyphRun& run, const Glyph& glyph, float from, float to)
{
    const fz_point first = {run.direction.x * glyph.advance * from, run.direction.y * glyph.advance * from};
    const fz_point last = {run.direction.x * glyph.advance * to, run.direction.y * glyph.advance * to};
    return {
        glyph.start.x + std::min(first.x, last.x) + run.reach.x0,
        glyph.start.y + std::min(first.y, last.y) + run.reach.y0,
        glyph.start.x + std::max(first.x, last.x) + run.reach.x1,
        glyph.start.y + std::max(first.y, last.y) + run.reach.y1};
}

} // namespace pdf
