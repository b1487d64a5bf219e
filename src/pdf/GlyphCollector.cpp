// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/GlyphCollector.h"

#include "pdf/Limits.h"

#include <algorithm>
#include <exception>

namespace pdf {
namespace {

constexpr std::size_t usualGlyphsPerPage = 4096;

} // namespace

GlyphCollector::GlyphCollector()
    : GlyphCollector(limits::glyphsPerPage)
{
    m_glyphs.reserve(usualGlyphsPerPage);
}

GlyphCollector::GlyphCollector(std::size_t mostGlyphs)
    : m_mostGlyphs(mostGlyphs)
{}

bool GlyphCollector::begin(const GlyphRun& run) noexcept
{
    try {
        m_runs.push_back(run);
        m_runs.back().firstGlyph = m_glyphs.size();
    } catch (const std::exception&) {
        return false;
    }
    return true;
}

bool GlyphCollector::add(const Glyph& glyph) noexcept
{
    if (m_glyphs.size() >= m_mostGlyphs)
        return false;
    try {
        m_glyphs.push_back(glyph);
    } catch (const std::exception&) {
        return false;
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
