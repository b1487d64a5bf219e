// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "writer/Font.h"

#include <string>
#include <string_view>
#include <vector>

namespace samples {

/// Red, green and blue from 0 to 1.
struct Colour
{
    double red = 0;
    double green = 0;
    double blue = 0;
};

/// From 0xRRGGBB.
Colour colour(unsigned rgb);

struct TextStyle
{
    Font* font = nullptr;
    /// Points.
    double size = 10;
    Colour colour = {};
};

enum class Alignment { left, right, centre, justified };

/// Lower left corner and size, in points.
struct Box
{
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;

    double right() const { return x + width; }
    double top() const { return y + height; }
};

/// Writes a page's content. All positions are in page points with the origin at the lower left; text is
/// positioned by its baseline.
class Canvas
{
public:
    /// The x is the left end, the right end or the middle, as the alignment says.
    void text(
        double x, double y, const TextStyle& style, std::string_view utf8,
        Alignment alignment = Alignment::left);

    /// Breaks the text into lines of at most this width, the first baseline at y, and returns the baseline
    /// that would come next. The last line of justified text is left as it is.
    double paragraph(
        double x, double y, double width, double leading, const TextStyle& style, std::string_view utf8,
        Alignment alignment = Alignment::left);

    void line(double x1, double y1, double x2, double y2, double width, const Colour& stroke);
    void fill(const Box& box, const Colour& fill);
    void stroke(const Box& box, double width, const Colour& stroke);
    /// The box with rounded corners.
    void fillRounded(const Box& box, double radius, const Colour& fill);
    void strokeRounded(const Box& box, double radius, double width, const Colour& stroke);
    void circle(double x, double y, double radius, const Colour& fill);
    /// Straight lines between the points, x and y in turns.
    void polyline(const std::vector<double>& points, double width, const Colour& stroke);

    /// Operators as they stand, on a line of their own.
    void raw(std::string_view operators);

    const std::string& content() const { return m_content; }

    /// The fonts in use; the content knows the first by the name F1, the next as F2 and so on.
    const std::vector<Font*>& fonts() const { return m_fonts; }

private:
    std::string fontName(Font* font);
    void roundedPath(const Box& box, double radius);

    std::string m_content;
    std::vector<Font*> m_fonts;
};

/// The text's width in points.
double widthOf(const TextStyle& style, std::string_view utf8);

/// Breaks the text at spaces into lines of at most this width; a longer word stands alone. A line feed in the
/// text starts a new line.
std::vector<std::string> wrapped(const TextStyle& style, std::string_view utf8, double width);

} // namespace samples
