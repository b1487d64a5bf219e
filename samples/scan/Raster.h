// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace samples {

/// A point in pixels, origin at the upper left of the picture, y growing downwards.
struct PixelPoint
{
    double x = 0;
    double y = 0;
};

using Polygon = std::vector<PixelPoint>;

/// A grey picture; 255 is white.
class Raster
{
public:
    Raster(int width, int height);

    int width() const { return m_width; }
    int height() const { return m_height; }

    std::uint8_t& at(int x, int y) { return m_pixels[index(x, y)]; }
    std::uint8_t at(int x, int y) const { return m_pixels[index(x, y)]; }

    /// Inks the inside of the closed polygons, overlapping ones once (non-zero winding), with soft edges.
    void fill(const std::vector<Polygon>& polygons);

private:
    std::size_t index(int x, int y) const
    {
        return static_cast<std::size_t>(y) * static_cast<std::size_t>(m_width) + static_cast<std::size_t>(x);
    }
    void inkSpan(std::vector<double>& coverage, double from, double to) const;

    int m_width;
    int m_height;
    std::vector<std::uint8_t> m_pixels;
};

} // namespace samples
