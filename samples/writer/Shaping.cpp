// SPDX-License-Identifier: AGPL-3.0-or-later
#include "writer/Shaping.h"

#include "writer/PdfFile.h"

#include <hb.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace samples {

std::string fontData(std::string_view name)
{
    const std::string path = SAMPLES_FONT_FOLDER "/" + std::string(name) + ".ttf";
    std::ifstream file(path, std::ios::binary);
    if (!file)
        throw std::runtime_error(path + ": cannot be read");
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

HarfBuzzFont openFont(std::string_view data)
{
    hb_blob_t* blob = hb_blob_create(
        data.data(), static_cast<unsigned>(data.size()), HB_MEMORY_MODE_READONLY, nullptr, nullptr);
    hb_face_t* face = hb_face_create(blob, 0);
    HarfBuzzFont font(hb_font_create(face), hb_font_destroy);
    hb_face_destroy(face);
    hb_blob_destroy(blob);
    return font;
}

int unitsPerEm(hb_font_t* font)
{
    return static_cast<int>(hb_face_get_upem(hb_font_get_face(font)));
}

std::vector<Glyph> shaped(hb_font_t* font, std::string_view utf8)
{
    const std::u32string points = codePoints(utf8);
    hb_buffer_t* buffer = hb_buffer_create();
    for (std::size_t i = 0; i < points.size(); ++i)
        hb_buffer_add(buffer, points[i], static_cast<unsigned>(i));
    hb_buffer_set_content_type(buffer, HB_BUFFER_CONTENT_TYPE_UNICODE);
    hb_buffer_guess_segment_properties(buffer);
    hb_buffer_set_language(buffer, HB_LANGUAGE_INVALID);
    hb_shape(font, buffer, nullptr, 0);

    unsigned count = 0;
    const hb_glyph_info_t* infos = hb_buffer_get_glyph_infos(buffer, &count);
    const hb_glyph_position_t* positions = hb_buffer_get_glyph_positions(buffer, nullptr);
    std::vector<unsigned> starts;
    std::transform(
        infos, infos + count, std::back_inserter(starts), [](const auto& info) { return info.cluster; });
    std::sort(starts.begin(), starts.end());

    std::vector<Glyph> glyphs;
    bool complete = true;
    for (unsigned i = 0; i < count; ++i) {
        Glyph glyph = {infos[i].codepoint, positions[i].x_advance, {}};
        complete = complete && glyph.index != 0;
        // A cluster reaches up to the start of the next one in the order of the letters.
        const unsigned start = infos[i].cluster;
        const auto next = std::upper_bound(starts.begin(), starts.end(), start);
        const std::size_t end = next == starts.end() ? points.size() : *next;
        if (i == 0 || infos[i - 1].cluster != start)
            glyph.letters = points.substr(start, end - start);
        glyphs.push_back(std::move(glyph));
    }
    hb_buffer_destroy(buffer);
    if (!complete)
        throw std::invalid_argument("an embedded font lacks a character of: " + std::string(utf8));
    return glyphs;
}

} // namespace samples
