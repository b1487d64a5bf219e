// SPDX-License-Identifier: AGPL-3.0-or-later
#include "scan/Raster.h"

#include <algorithm>
#include <cmath>

namespace samples {
namespace {

// Every row of pixels is crossed by so many scan lines; along each of them coverage is exact.
constexpr int linesPerPixel = 5;

struct Crossing
{
    double x;
    int winding;
};

/// Where the horizontal line at y meets the outlines, from left to right.
std::vector<Crossing> crossings(const std::vector<Polygon>& polygons, double y)
{
    std::vector<Crossing> result;
    for (const Polygon& polygon : polygons) {
        for (std::size_t i = 0; i < polygon.size(); ++i) {
            const PixelPoint& from = polygon[i];
            const PixelPoint& to = polygon[(i + 1) % polygon.size()];
            if ((from.y <= y) == (to.y <= y))
                continue;
            const double x = from.x + (y - from.y) / (to.y - from.y) * (to.x - from.x);
            result.push_back({x, from.y < to.y ? 1 : -1});
        }
    }
    std::sort(result.begin(), result.end(), [](const Crossing& a, const Crossing& b) { return a.x < b.x; });
    return result;
}

} // namespace

Raster::Raster(int width, int height)
    : m_width(width)
    , m_height(height)
    , m_pixels(static_cast<std::size_t>(width) * static_cast<std::size_t>(height), 255)
{}

void Raster::inkSpan(std::vector<double>& coverage, double from, double to) const
{
    from = std::clamp(from, 0.0, static_cast<double>(m_width));
    to = std::clamp(to, 0.0, static_cast<double>(m_width));
    for (int x = static_cast<int>(from); x < m_width && x < to; ++x)
        coverage[static_cast<std::size_t>(x)] += std::min(to, x + 1.0) - std::max<double>(from, x);
}

void Raster::fill(const std::vector<Polygon>& polygons)
{
    double top = m_height;
    double bottom = 0;
    for (const Polygon& polygon : polygons) {
        for (const PixelPoint& point : polygon) {
            top = std::min(top, point.y);
            bottom = std::max(bottom, point.y);
        }
    }
    const int firstRow = std::max(0, static_cast<int>(std::floor(top)));
    const int lastRow = std::min(m_height - 1, static_cast<int>(std::floor(bottom)));
    std::vector<double> coverage(static_cast<std::size_t>(m_width));
    for (int row = firstRow; row <= lastRow; ++row) {
        std::fill(coverage.begin(), coverage.end(), 0);
        for (int line = 0; line < linesPerPixel; ++line) {
            int winding = 0;
            double start = 0;
            for (const Crossing& crossing : crossings(polygons, row + (line + 0.5) / linesPerPixel)) {
                if (winding == 0)
                    start = crossing.x;
                winding += crossing.winding;
                if (winding == 0)
                    inkSpan(coverage, start, crossing.x);
            }
        }
        for (int x = 0; x < m_width; ++x) {
            const double ink = std::min(1.0, coverage[static_cast<std::size_t>(x)] / linesPerPixel);
            at(x, row) = static_cast<std::uint8_t>(at(x, row) * (1 - ink));
        }
    }
}

} // namespace samples
