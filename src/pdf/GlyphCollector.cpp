// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/GlyphCollector.h"

#include "pdf/Limits.h"

#include <algorithm>

namespace pdf {
namespace {

constexpr std::size_t usualGlyphsPerPage = 4096;

} // namespace

GlyphCollector::GlyphCollector()
{
    m_glyphs.reserve(usualGlyphsPerPage);
}

void GlyphCollector::begin(const GlyphRun& run)
{
    m_runs.push_back(run);
    m_runs.back().firstGlyph = m_glyphs.size();
}

bool GlyphCollector::add(const Glyph& glyph)
{
    if (m_glyphs.size() >= limits::glyphsPerPage)
        return false;
    m_glyphs.push_back(glyph);
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
