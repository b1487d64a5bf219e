// SPDX-License-Identifier: AGPL-3.0-or-later
#include "scan/Paper.h"

#include "scan/GlyphOutline.h"
#include "writer/Document.h"

#include <algorithm>

namespace samples {
namespace {

/// A linear congruential generator (the constants are those of Numerical Recipes): the same numbers
/// everywhere.
class Noise
{
public:
    explicit Noise(std::uint32_t seed)
        : m_state(seed)
    {}

    /// From 0 to below the limit, which is at most 65,536.
    int below(int limit)
    {
        m_state = m_state * 1664525U + 1013904223U;
        return static_cast<int>(((m_state >> 16) * static_cast<std::uint32_t>(limit)) >> 16);
    }

private:
    std::uint32_t m_state;
};

constexpr int speckCount = 120;
constexpr int maximumSpeckSize = 3;

/// The lens sees a little of the neighbouring pixels.
Raster softened(const Raster& sharp)
{
    Raster result(sharp.width(), sharp.height());
    for (int y = 0; y < sharp.height(); ++y) {
        for (int x = 0; x < sharp.width(); ++x) {
            const int left = sharp.at(std::max(x - 1, 0), y);
            const int right = sharp.at(std::min(x + 1, sharp.width() - 1), y);
            const int above = sharp.at(x, std::max(y - 1, 0));
            const int below = sharp.at(x, std::min(y + 1, sharp.height() - 1));
            result.at(x, y) =
                static_cast<std::uint8_t>((sharp.at(x, y) * 4 + left + right + above + below) / 8);
        }
    }
    return result;
}

void addDust(Raster& raster, Noise& noise)
{
    for (int i = 0; i < speckCount; ++i) {
        const int size = 1 + noise.below(maximumSpeckSize);
        const int left = noise.below(raster.width() - size);
        const int top = noise.below(raster.height() - size);
        const auto tone = static_cast<std::uint8_t>(40 + noise.below(140));
        for (int y = top; y < top + size; ++y) {
            for (int x = left; x < left + size; ++x) {
                // Corners are left out by chance, so that specks are not square.
                if (noise.below(4) > 0)
                    raster.at(x, y) = std::min(raster.at(x, y), tone);
            }
        }
    }
}

} // namespace

Paper::Face::Face(std::string_view name)
    : data(fontData(name))
    , font(openFont(data))
{}

double Paper::Face::width(std::string_view utf8, double size) const
{
    int sum = 0;
    for (const Glyph& glyph : shaped(font.get(), utf8))
        sum += glyph.advance;
    return sum * size / unitsPerEm(font.get());
}

Paper::Paper(int dotsPerInch, double tilt)
    : m_scale(dotsPerInch / 72.0)
    , m_tilt(tilt)
    , m_ink(static_cast<int>(a4.width * m_scale), static_cast<int>(a4.height * m_scale))
{}

PixelPoint Paper::pixel(double x, double y) const
{
    // Turned about the middle of the sheet; for an angle this small the cosine is 1.
    const double right = x - a4.width / 2;
    const double down = a4.height / 2 - y;
    return {
        (a4.width / 2 + right - down * m_tilt) * m_scale, (a4.height / 2 + down + right * m_tilt) * m_scale};
}

void Paper::text(
    double x, double y, const Face& face, double size, std::string_view utf8, Alignment alignment)
{
    if (alignment == Alignment::right)
        x -= face.width(utf8, size);
    else if (alignment == Alignment::centre)
        x -= face.width(utf8, size) / 2;
    const double unit = size / unitsPerEm(face.font.get());
    for (const Glyph& glyph : shaped(face.font.get(), utf8)) {
        std::vector<Polygon> polygons;
        for (const auto& contour : glyphOutline(face.font.get(), glyph.index)) {
            Polygon& polygon = polygons.emplace_back();
            for (const OutlinePoint& point : contour)
                polygon.push_back(pixel(x + point.x * unit, y + point.y * unit));
        }
        m_ink.fill(polygons);
        x += glyph.advance * unit;
    }
}

double Paper::paragraph(
    double x, double y, double width, double leading, const Face& face, double size, std::string_view utf8)
{
    std::string line;
    const auto print = [&] {
        text(x, y, face, size, line);
        y -= leading;
    };
    std::size_t start = 0;
    while (start <= utf8.size()) {
        const std::size_t end = std::min(utf8.find(' ', start), utf8.size());
        const std::string word(utf8.substr(start, end - start));
        if (!line.empty() && face.width(line + " ", size) + face.width(word, size) > width) {
            print();
            line.clear();
        }
        if (!line.empty())
            line += ' ';
        line += word;
        start = end + 1;
    }
    print();
    return y;
}

void Paper::fill(const Box& box)
{
    m_ink.fill(
        {{pixel(box.x, box.y), pixel(box.right(), box.y), pixel(box.right(), box.top()),
          pixel(box.x, box.top())}});
}

Raster Paper::scanned(std::uint32_t seed) const
{
    Raster result = softened(m_ink);
    Noise noise(seed);
    addDust(result, noise);
    return result;
}

std::string Paper::scannedBlackAndWhite(std::uint32_t seed) const
{
    const Raster picture = scanned(seed);
    Noise noise(seed + 1);
    std::string rows;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            if (x % 8 == 0)
                rows += '\0';
            // The threshold trembles, which frays the edges of the letters.
            const bool white = picture.at(x, y) > 110 + noise.below(60);
            if (white)
                rows.back() = static_cast<char>(static_cast<unsigned char>(rows.back()) | (0x80U >> (x % 8)));
        }
    }
    return rows;
}

std::string Paper::scannedGrey(std::uint32_t seed) const
{
    const Raster picture = scanned(seed);
    Noise noise(seed + 1);
    std::string rows;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            // The paper is not quite white, ink not quite black, and one pixel in thirty is a shade darker.
            const int paper = noise.below(30) == 0 ? 220 : 236;
            const int shade = (30 + picture.at(x, y) * (paper - 30) / 255) / 16;
            if (x % 2 == 0)
                rows += static_cast<char>(shade << 4);
            else
                rows.back() =
                    static_cast<char>(static_cast<unsigned char>(rows.back()) | static_cast<unsigned>(shade));
        }
    }
    return rows;
}

} // namespace samples
