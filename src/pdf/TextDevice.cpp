// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/TextDevice.h"

#include "pdf/ActualText.h"
#include "pdf/Engine.h"
#include "pdf/Limits.h"
#include "pdf/MuPDFVersion.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <tuple>

namespace pdf {
namespace {

// What MuPDF says for an unknown character.
constexpr int replacementCharacter = 0xFFFD;

// MuPDF gives glyphs without an outline a box that is not quite empty; for a font of size 1.
constexpr float leastInk = 1e-3F;

/// Remembers the advances of a font's glyphs in horizontal writing. MuPDF does so as well, but takes a lock
/// that all threads share for every glyph.
struct FontAdvances
{
    struct Entry
    {
        /// One more than the glyph's number, so that zero is none.
        int key;
        float advance;
    };
    /// Kept, so that no other font can take its address.
    fz_font* font;
    std::array<Entry, 256> entries;

    /// May throw as MuPDF does.
    float advance(fz_context* ctx, int glyph)
    {
        Entry& entry = entries[static_cast<unsigned>(glyph) % entries.size()];
        if (entry.key != glyph + 1)
            entry = {glyph + 1, fz_advance_glyph(ctx, font, glyph, 0)};
        return entry.advance;
    }
};

/// A device of MuPDF that keeps the text and lets everything else pass.
struct TextDevice
{
    fz_device base;
    /// The fonts that were used last, and which of them is to go next.
    std::array<FontAdvances, 8> fonts;
    std::size_t oldestFont;
    GlyphCollector* collector;
    fz_rect visible;
    int maskDepth;
};

FontAdvances& advancesOf(fz_context* ctx, TextDevice* device, fz_font* font)
{
    for (FontAdvances& known : device->fonts) {
        if (known.font == font)
            return known;
    }
    FontAdvances& oldest = device->fonts[device->oldestFont];
    device->oldestFont = (device->oldestFont + 1) % device->fonts.size();
    fz_drop_font(ctx, oldest.font);
    oldest = {};
    oldest.font = fz_keep_font(ctx, font);
    return oldest;
}

void dropDevice(fz_context* ctx, fz_device* base)
{
    for (const FontAdvances& known : reinterpret_cast<TextDevice*>(base)->fonts)
        fz_drop_font(ctx, known.font);
}

/// Distances from the line of writing to the sides of a glyph, for a font of size 1.
struct Extent
{
    float ascent;
    float descent;
};

Extent fontExtent(fz_context* ctx, fz_font* font, bool isVertical)
{
    if (isVertical)
        return {0.5F, -0.5F};
    const float ascent = fz_font_ascender(ctx, font);
    const float descent = fz_font_descender(ctx, font);
    // Fonts that tell nonsense get what most fonts have.
    if (!(ascent - descent > 0.2F) || !(ascent - descent < 4))
        return {0.8F, -0.2F};
    return {std::clamp(ascent, 0.3F, 1.2F), std::clamp(descent, -0.5F, 0.0F)};
}

GlyphRun runOf(fz_context* ctx, const fz_text_span* span, fz_matrix ctm)
{
    const fz_matrix trm = fz_concat(span->trm, ctm);
    GlyphRun run;
    run.isVertical = span->wmode != 0;
    run.size = fz_matrix_expansion(trm);
    run.direction =
        fz_normalize_vector(fz_transform_vector(run.isVertical ? fz_point{0, -1} : fz_point{1, 0}, trm));
    const Extent extent = fontExtent(ctx, span->font, run.isVertical);
    const fz_point across = fz_transform_vector(run.isVertical ? fz_point{1, 0} : fz_point{0, 1}, trm);
    const fz_point ascent = {across.x * extent.ascent, across.y * extent.ascent};
    const fz_point descent = {across.x * extent.descent, across.y * extent.descent};
    run.reach = {
        std::min(ascent.x, descent.x), std::min(ascent.y, descent.y), std::max(ascent.x, descent.x),
        std::max(ascent.y, descent.y)};
    const auto down = [&run](fz_point side) { return side.y * run.direction.x - side.x * run.direction.y; };
    std::tie(run.top, run.foot) = std::minmax({down(ascent), down(descent)});
    return run;
}

bool isVisible(fz_rect box, const fz_rect& visible)
{
    return box.x1 >= visible.x0 && box.x0 <= visible.x1 && box.y1 >= visible.y0 && box.y0 <= visible.y1;
}

/// Ends the whole operation; what has been collected so far would pass for the whole text.
[[noreturn]] void refuseText(fz_context* ctx)
{
    CookieScope::current()->stop();
    fz_throw(ctx, FZ_ERROR_ABORT, "the page has too much text");
}

/// A glyph that the document has no character for and that shows nothing parts words all the same.
bool isUnnamedSpace(fz_context* ctx, fz_font* font, const fz_text_item& item)
{
    if (item.ucs != replacementCharacter || item.gid < 0 || fz_font_t3_procs(ctx, font))
        return false;
    const fz_rect box = fz_bound_glyph(ctx, font, item.gid, fz_identity);
    return !(box.x1 - box.x0 > leastInk) && !(box.y1 - box.y0 > leastInk);
}

void addSpan(fz_context* ctx, TextDevice* device, const fz_text_span* span, fz_matrix ctm)
{
    const GlyphRun run = runOf(ctx, span, ctm);
    if (!std::isnormal(run.size))
        return;
    device->collector->begin(run);
    const fz_matrix trm = fz_concat(span->trm, ctm);
    const fz_point step = fz_transform_vector(run.isVertical ? fz_point{0, -1} : fz_point{1, 0}, trm);
    const float unit = std::hypot(step.x, step.y);
    // A glyph of vertical writing is placed by its foot, half its width left of the line of writing.
    const fz_point toLine = run.isVertical ? fz_transform_vector({0.5F, 0}, trm) : fz_point{0, 0};

    FontAdvances& advances = advancesOf(ctx, device, span->font);
    for (int i = 0; i < span->len; ++i) {
        const fz_text_item& item = span->items[i];
        const fz_point foot = fz_transform_point({item.x, item.y}, ctm);
        Glyph glyph;
        glyph.character = isUnnamedSpace(ctx, span->font, item) ? ' ' : item.ucs;
        glyph.isContinuation = item.gid < 0;
        glyph.start = {foot.x + toLine.x, foot.y + toLine.y};
        if (item.gid >= 0)
            glyph.advance = unit * (run.isVertical ? fz_advance_glyph(ctx, span->font, item.gid, 1)
                                                   : advances.advance(ctx, item.gid));
        if (run.isVertical) {
            glyph.start.x -= run.direction.x * glyph.advance;
            glyph.start.y -= run.direction.y * glyph.advance;
        }
        if (isVisible(glyphBox(run, glyph), device->visible) && !device->collector->add(glyph))
            refuseText(ctx);
    }
}

void addText(fz_context* ctx, fz_device* base, const fz_text* text, fz_matrix ctm)
{
    auto* device = reinterpret_cast<TextDevice*>(base);
    if (device->maskDepth > 0)
        return;
    engine::translated(ctx, [&] {
        for (const fz_text_span* span = text->head; span; span = span->next)
            addSpan(ctx, device, span, ctm);
    });
}

void fillText(
    fz_context* ctx, fz_device* device, const fz_text* text, fz_matrix ctm, fz_colorspace*, const float*,
    float, fz_color_params)
{
    addText(ctx, device, text, ctm);
}

void strokeText(
    fz_context* ctx, fz_device* device, const fz_text* text, const fz_stroke_state*, fz_matrix ctm,
    fz_colorspace*, const float*, float, fz_color_params)
{
    addText(ctx, device, text, ctm);
}

void clipText(fz_context* ctx, fz_device* device, const fz_text* text, fz_matrix ctm, fz_rect)
{
    addText(ctx, device, text, ctm);
}

void clipStrokeText(
    fz_context* ctx, fz_device* device, const fz_text* text, const fz_stroke_state*, fz_matrix ctm, fz_rect)
{
    addText(ctx, device, text, ctm);
}

void beginMask(fz_context*, fz_device* base, fz_rect, int, fz_colorspace*, const float*, fz_color_params)
{
    ++reinterpret_cast<TextDevice*>(base)->maskDepth;
}

void endMask(fz_context*, fz_device* base)
{
    --reinterpret_cast<TextDevice*>(base)->maskDepth;
}

fz_device* newTextDevice(fz_context* ctx, GlyphCollector& collector, fz_rect visible)
{
    TextDevice* device = fz_new_derived_device(ctx, TextDevice);
    device->collector = &collector;
    device->visible = visible;
    device->base.drop_device = dropDevice;
    device->base.fill_text = fillText;
    device->base.stroke_text = strokeText;
    device->base.clip_text = clipText;
    device->base.clip_stroke_text = clipStrokeText;
    device->base.ignore_text = addText;
    device->base.begin_mask = beginMask;
    device->base.end_mask = endMask;
    return &device->base;
}

/// Makes the interpreter skip every operator that has nothing to do with where text is, together with the
/// images, colours and masks that it would have to load.
void keepTextOperators(pdf_processor* processor)
{
    const pdf_processor all = *processor;
    *processor = {};
    processor->refs = all.refs;
    processor->close_processor = all.close_processor;
    processor->drop_processor = all.drop_processor;
    processor->usage = all.usage;
    processor->hidden = all.hidden;
    // Graphics state and forms.
    processor->op_q = all.op_q;
    processor->op_Q = all.op_Q;
    processor->op_cm = all.op_cm;
    processor->op_gs_begin = all.op_gs_begin;
    processor->op_gs_end = all.op_gs_end;
    processor->op_Do_form = all.op_Do_form;
    // Text state, position and strings.
    processor->op_BT = all.op_BT;
    processor->op_ET = all.op_ET;
    processor->op_Tc = all.op_Tc;
    processor->op_Tw = all.op_Tw;
    processor->op_Tz = all.op_Tz;
    processor->op_TL = all.op_TL;
    processor->op_Tf = all.op_Tf;
    processor->op_Tr = all.op_Tr;
    processor->op_Ts = all.op_Ts;
    processor->op_Td = all.op_Td;
    processor->op_TD = all.op_TD;
    processor->op_Tm = all.op_Tm;
    processor->op_Tstar = all.op_Tstar;
    processor->op_TJ = all.op_TJ;
    processor->op_Tj = all.op_Tj;
    processor->op_squote = all.op_squote;
    processor->op_dquote = all.op_dquote;
    // Marked content, which may be optional and hidden.
    processor->op_BMC = all.op_BMC;
    processor->op_BDC = all.op_BDC;
    processor->op_EMC = all.op_EMC;
    processor->op_END = all.op_END;
}

/// Has `process(processor)` interpreted for its text, up to where it is damaged. May throw as MuPDF does.
template <typename Process>
void collect(
    fz_context* ctx, const PageGeometry& geometry, GlyphCollector& collector, fz_cookie* cookie,
    Process process)
{
    fz_device* device = newTextDevice(ctx, collector, geometry.displayRect);
    pdf_processor* processor = nullptr;
    ActualText actualText;
    fz_var(processor);
    fz_try(ctx)
    {
        processor =
            pdf_new_run_processor(ctx, device, geometry.pageToDisplay, "View", nullptr, nullptr, cookie);
        actualText.attach(processor, collector);
        keepTextOperators(processor);
        process(processor);
        pdf_close_processor(ctx, processor);
        fz_close_device(ctx, device);
    }
    fz_always(ctx)
    {
        actualText.detach(ctx);
        pdf_drop_processor(ctx, processor);
        fz_drop_device(ctx, device);
    }
    fz_catch(ctx)
    {
        engine::rethrowUnlessDamage(ctx);
    }
}

/// Whether something on the page is drawn over its content. Loading a page for its annotations takes longer
/// than reading its text, and most pages have none but links, which show nothing.
bool hasVisibleAnnotations(fz_context* ctx, pdf_obj* page)
{
    constexpr int invisible = PDF_ANNOT_IS_INVISIBLE | PDF_ANNOT_IS_HIDDEN | PDF_ANNOT_IS_NO_VIEW;
    pdf_obj* annotations = pdf_dict_get(ctx, page, PDF_NAME(Annots));
    const int count = std::min(pdf_array_len(ctx, annotations), limits::annotationsPerPage);
    for (int i = 0; i < count; ++i) {
        pdf_obj* annotation = pdf_array_get(ctx, annotations, i);
        pdf_obj* type = pdf_dict_get(ctx, annotation, PDF_NAME(Subtype));
        if (pdf_is_name(ctx, type) && !pdf_name_eq(ctx, type, PDF_NAME(Link)) &&
            !pdf_name_eq(ctx, type, PDF_NAME(Popup)) &&
            !(pdf_dict_get_int(ctx, annotation, PDF_NAME(F)) & invisible))
            return true;
    }
    return false;
}

void collectAnnotation(
    fz_context* ctx, const PageGeometry& geometry, pdf_annot* annotation, PageGlyphs& glyphs,
    std::size_t& mostGlyphs, fz_cookie* cookie)
{
    std::vector<AnnotationGlyphs>& annotations = glyphs.annotations;
    engine::translated(ctx, [&] { annotations.push_back({{}, GlyphCollector(mostGlyphs)}); });
    // What stands in for a missing appearance is found as long as this is in force.
    pdf_annot_push_local_xref(ctx, annotation);
    fz_try(ctx)
    {
        collect(ctx, geometry, annotations.back().glyphs, cookie, [&](pdf_processor* processor) {
            pdf_process_annot(ctx, processor, annotation, cookie);
        });
        annotations.back().area = fz_transform_rect(
            pdf_dict_get_rect(ctx, pdf_annot_obj(ctx, annotation), PDF_NAME(Rect)), geometry.pageToDisplay);
    }
    fz_always(ctx)
    {
        pdf_annot_pop_local_xref(ctx, annotation);
    }
    fz_catch(ctx)
    {
        fz_rethrow(ctx);
    }
    const std::size_t count = annotations.back().glyphs.glyphs().size();
    mostGlyphs -= count;
    if (count == 0)
        annotations.pop_back();
}

void collectAnnotations(fz_context* ctx, PageHandle& handle, PageGlyphs& glyphs, fz_cookie* cookie)
{
    pdf_page* page = handle.loadContents(ctx);
    const PageGeometry geometry = handle.geometry();
    std::size_t mostGlyphs = limits::glyphsPerPage - glyphs.content.glyphs().size();
    const CookieScope& scope = *CookieScope::current();
    for (pdf_annot* next = pdf_first_annot(ctx, page); next && !scope.isStopped();
         next = pdf_next_annot(ctx, next))
        collectAnnotation(ctx, geometry, next, glyphs, mostGlyphs, cookie);
    for (pdf_annot* next = pdf_first_widget(ctx, page); next && !scope.isStopped();
         next = pdf_next_widget(ctx, next))
        collectAnnotation(ctx, geometry, next, glyphs, mostGlyphs, cookie);
}

} // namespace

void collectGlyphs(
    fz_context* ctx, pdf_document* document, PageHandle& page, PageGlyphs& glyphs, fz_cookie* cookie)
{
    collect(ctx, page.geometry(), glyphs.content, cookie, [&](pdf_processor* processor) {
        pdf_obj* resources = pdf_dict_get_inheritable(ctx, page.object, PDF_NAME(Resources));
        pdf_obj* contents = pdf_dict_get(ctx, page.object, PDF_NAME(Contents));
        pdf_process_contents(ctx, processor, document, resources, contents, cookie);
    });
    fz_try(ctx)
    {
        if (hasVisibleAnnotations(ctx, page.object))
            collectAnnotations(ctx, page, glyphs, cookie);
    }
    fz_catch(ctx)
    {
        engine::rethrowUnlessDamage(ctx);
    }
}

} // namespace pdf
