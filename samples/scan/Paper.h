// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "scan/Raster.h"
#include "writer/Canvas.h"
#include "writer/Shaping.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace samples {

/// A sheet of A4 paper that is printed on, laid on a scanner a little askew, and scanned.
class Paper
{
public:
    /// `tilt` is the sine of the angle by which the sheet is turned, small.
    Paper(int dotsPerInch, double tilt);

    struct Face
    {
        /// Keeps the bytes for the font.
        std::string data;
        HarfBuzzFont font;

        explicit Face(std::string_view name);
        double width(std::string_view utf8, double size) const;
    };

    // Printing, in page points with the origin at the lower left of the sheet.

    void text(
        double x, double y, const Face& face, double size, std::string_view utf8,
        Alignment alignment = Alignment::left);
    /// Breaks the text into lines of at most this width and returns the baseline that would come next.
    double paragraph(
        double x, double y, double width, double leading, const Face& face, double size,
        std::string_view utf8);
    void fill(const Box& box);

    // Scanning. Both add the same noise for the same seed.

    /// One bit for each pixel, most significant first, rows padded to bytes; 1 is white.
    std::string scannedBlackAndWhite(std::uint32_t seed) const;
    /// Four bits for each pixel; 15 is white.
    std::string scannedGrey(std::uint32_t seed) const;

    int pixelWidth() const { return m_ink.width(); }
    int pixelHeight() const { return m_ink.height(); }

private:
    PixelPoint pixel(double x, double y) const;
    Raster scanned(std::uint32_t seed) const;

    double m_scale;
    double m_tilt;
    Raster m_ink;
};

} // namespace samples
