// SPDX-License-Identifier: AGPL-3.0-or-later
#include "writer/Canvas.h"

#include <algorithm>

namespace samples {
namespace {

// The control points that make a Bézier curve look like a quarter of a circle of radius 1.
constexpr double quarterCircle = 0.5523;

std::string operands(const std::vector<double>& values)
{
    std::string result;
    for (const double value : values)
        result += number(value) + " ";
    return result;
}

std::string fillColour(const Colour& value)
{
    return operands({value.red, value.green, value.blue}) + "rg ";
}

std::string strokeColour(const Colour& value, double width)
{
    return operands({value.red, value.green, value.blue}) + "RG " + number(width) + " w ";
}

} // namespace

Colour colour(unsigned rgb)
{
    return {((rgb >> 16) & 0xff) / 255.0, ((rgb >> 8) & 0xff) / 255.0, (rgb & 0xff) / 255.0};
}

std::string Canvas::fontName(Font* font)
{
    auto found = std::find(m_fonts.begin(), m_fonts.end(), font);
    if (found == m_fonts.end())
        found = m_fonts.insert(m_fonts.end(), font);
    return "F" + std::to_string(found - m_fonts.begin() + 1);
}

void Canvas::text(double x, double y, const TextStyle& style, std::string_view utf8, Alignment alignment)
{
    if (alignment == Alignment::right)
        x -= widthOf(style, utf8);
    else if (alignment == Alignment::centre)
        x -= widthOf(style, utf8) / 2;
    raw("BT " + fillColour(style.colour) + "/" + fontName(style.font) + " " + number(style.size) + " Tf " +
        operands({x, y}) + "Td " + style.font->show(utf8) + " ET");
}

double Canvas::paragraph(
    double x, double y, double width, double leading, const TextStyle& style, std::string_view utf8,
    Alignment alignment)
{
    const std::vector<std::string> lines = wrapped(style, utf8, width);
    for (const std::string& line : lines) {
        const auto gaps = std::count(line.begin(), line.end(), ' ');
        const bool stretch = alignment == Alignment::justified && &line != &lines.back() && gaps > 0;
        if (stretch)
            raw(number((width - widthOf(style, line)) / static_cast<double>(gaps)) + " Tw");
        const double start = alignment == Alignment::right    ? x + width
                             : alignment == Alignment::centre ? x + width / 2
                                                              : x;
        text(start, y, style, line, alignment);
        if (stretch)
            raw("0 Tw");
        y -= leading;
    }
    return y;
}

void Canvas::line(double x1, double y1, double x2, double y2, double width, const Colour& stroke)
{
    polyline({x1, y1, x2, y2}, width, stroke);
}

void Canvas::polyline(const std::vector<double>& points, double width, const Colour& stroke)
{
    std::string path;
    for (std::size_t i = 0; i + 1 < points.size(); i += 2)
        path += operands({points[i], points[i + 1]}) + (i == 0 ? "m " : "l ");
    raw(strokeColour(stroke, width) + path + "S");
}

void Canvas::fill(const Box& box, const Colour& fill)
{
    raw(fillColour(fill) + operands({box.x, box.y, box.width, box.height}) + "re f");
}

void Canvas::stroke(const Box& box, double width, const Colour& stroke)
{
    raw(strokeColour(stroke, width) + operands({box.x, box.y, box.width, box.height}) + "re S");
}

void Canvas::fillRounded(const Box& box, double radius, const Colour& fill)
{
    raw(fillColour(fill));
    roundedPath(box, radius);
    raw("f");
}

void Canvas::strokeRounded(const Box& box, double radius, double width, const Colour& stroke)
{
    raw(strokeColour(stroke, width));
    roundedPath(box, radius);
    raw("S");
}

void Canvas::circle(double x, double y, double radius, const Colour& fill)
{
    fillRounded({x - radius, y - radius, 2 * radius, 2 * radius}, radius, fill);
}

void Canvas::roundedPath(const Box& box, double radius)
{
    const double in = radius * (1 - quarterCircle);
    const double left = box.x;
    const double bottom = box.y;
    const double right = box.right();
    const double top = box.top();
    raw(operands({left + radius, bottom}) + "m " + operands({right - radius, bottom}) + "l " +
        operands({right - in, bottom, right, bottom + in, right, bottom + radius}) + "c " +
        operands({right, top - radius}) + "l " +
        operands({right, top - in, right - in, top, right - radius, top}) + "c " +
        operands({left + radius, top}) + "l " +
        operands({left + in, top, left, top - in, left, top - radius}) + "c " +
        operands({left, bottom + radius}) + "l " +
        operands({left, bottom + in, left + in, bottom, left + radius, bottom}) + "c h");
}

void Canvas::raw(std::string_view operators)
{
    m_content += operators;
    m_content += '\n';
}

double widthOf(const TextStyle& style, std::string_view utf8)
{
    return style.font->width(utf8) * style.size / 1000;
}

std::vector<std::string> wrapped(const TextStyle& style, std::string_view utf8, double width)
{
    std::vector<std::string> lines(1);
    std::size_t start = 0;
    while (start <= utf8.size()) {
        const std::size_t end = std::min(utf8.find_first_of(" \n", start), utf8.size());
        const std::string word(utf8.substr(start, end - start));
        std::string& line = lines.back();
        if (line.empty())
            line = word;
        else if (widthOf(style, line + " ") + widthOf(style, word) <= width)
            line.append(" ").append(word);
        else
            lines.push_back(word);
        if (end < utf8.size() && utf8[end] == '\n')
            lines.emplace_back();
        start = end + 1;
    }
    return lines;
}

} // namespace samples
