// SPDX-License-Identifier: AGPL-3.0-or-later
#include "scan/GlyphOutline.h"

#include <hb.h>

namespace samples {
namespace {

// Fine enough for letters of a hundred pixels.
constexpr int linesPerCurve = 8;

std::vector<Contour>& outlineIn(void* data)
{
    return *static_cast<std::vector<Contour>*>(data);
}

void moveTo(hb_draw_funcs_t*, void* data, hb_draw_state_t*, float x, float y, void*)
{
    outlineIn(data).push_back({{x, y}});
}

void lineTo(hb_draw_funcs_t*, void* data, hb_draw_state_t*, float x, float y, void*)
{
    outlineIn(data).back().push_back({x, y});
}

void quadraticTo(
    hb_draw_funcs_t*, void* data, hb_draw_state_t*, float controlX, float controlY, float x, float y, void*)
{
    Contour& contour = outlineIn(data).back();
    const OutlinePoint start = contour.back();
    for (int i = 1; i <= linesPerCurve; ++i) {
        const double t = static_cast<double>(i) / linesPerCurve;
        const double u = 1 - t;
        contour.push_back(
            {u * u * start.x + 2 * u * t * controlX + t * t * x,
             u * u * start.y + 2 * u * t * controlY + t * t * y});
    }
}

hb_draw_funcs_t* collectingFunctions()
{
    hb_draw_funcs_t* functions = hb_draw_funcs_create();
    hb_draw_funcs_set_move_to_func(functions, moveTo, nullptr, nullptr);
    hb_draw_funcs_set_line_to_func(functions, lineTo, nullptr, nullptr);
    hb_draw_funcs_set_quadratic_to_func(functions, quadraticTo, nullptr, nullptr);
    hb_draw_funcs_make_immutable(functions);
    return functions;
}

} // namespace

std::vector<Contour> glyphOutline(hb_font_t* font, std::uint32_t glyph)
{
    static hb_draw_funcs_t* const functions = collectingFunctions();
    std::vector<Contour> outline;
    hb_font_get_glyph_shape(font, glyph, functions, &outline);
    return outline;
}

} // namespace samples
