// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <mupdf/fitz.h>

#include <cstddef>
#include <vector>

namespace pdf {

/// What the glyphs of one piece of text have in common, in display space.
struct GlyphRun
{
    /// Direction of writing, of length 1.
    fz_point direction = {1, 0};
    /// The font size as it is shown.
    float size = 0;
    /// Around a point of the line of writing, how far the glyphs reach across it.
    fz_rect reach = {};
    /// The same as distances along the direction of writing turned a quarter clockwise.
    float top = 0;
    float foot = 0;
    /// The line of writing runs down the middle of the glyphs instead of along their feet.
    bool isVertical = false;
    std::size_t firstGlyph = 0;
};

/// A glyph of a page's text, in display space.
struct Glyph
{
    /// The character, or -1 where another glyph of the same character has told it already.
    int character = -1;
    /// Where the glyph starts on the line of writing.
    fz_point start = {};
    /// How far the glyph takes the writing along the line.
    float advance = 0;
    /// One more character of the glyph before, without extent of its own.
    bool isContinuation = false;
};

/// Takes a page's glyphs in the order of its content.
class GlyphCollector
{
public:
    GlyphCollector();
    /// For a text of which nothing is known but that it has at most so many glyphs.
    explicit GlyphCollector(std::size_t mostGlyphs);

    /// The glyphs that follow belong to this run, whose first glyph is set here.
    void begin(const GlyphRun& run);
    /// False when there are more glyphs than any page has.
    bool add(const Glyph& glyph);
    /// Puts the text, which is UTF-8, in the place of the glyphs from this one on: over the whole stretch
    /// that they cover, or, where that goes over several lines, over each line's in proportion to its glyphs.
    /// False when there is too much text; then all is as it was.
    bool replaceFrom(std::size_t first, const char* text);

    const std::vector<GlyphRun>& runs() const { return m_runs; }
    const std::vector<Glyph>& glyphs() const { return m_glyphs; }

private:
    struct Stretch;

    std::vector<Stretch> stretchesFrom(std::size_t first) const;

    std::vector<GlyphRun> m_runs;
    std::vector<Glyph> m_glyphs;
    std::size_t m_mostGlyphs;
};

/// The text that an annotation or a form field shows.
struct AnnotationGlyphs
{
    /// Where it is, in display space.
    fz_rect area = {};
    GlyphCollector glyphs;
};

/// What is seen of a page's text.
struct PageGlyphs
{
    GlyphCollector content;
    /// Those that show any, in the order in which they are drawn.
    std::vector<AnnotationGlyphs> annotations;
};

/// The rectangle around a part of a glyph, from one fraction of its advance to another.
fz_rect glyphBox(const GlyphRun& run, const Glyph& glyph, float from = 0, float to = 1);

} // namespace pdf
