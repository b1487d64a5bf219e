// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/FieldFrame.h"

#include <algorithm>
#include <cstring>

namespace pdf {
namespace {

constexpr int mostDashes = 8;
constexpr double largestWidth = 100.0;

// How light the edges of a border are that looks raised or sunken: upper left, lower right.
constexpr double beveledEdges[] = {1.0, 0.5};
constexpr double insetEdges[] = {0.5, 0.75};

// The part of the radius at which a Bézier curve's control points make it a quarter of a circle.
constexpr double quarterCircle = 0.5523;

void readNumbers(fz_context* ctx, pdf_obj* array, int most, std::vector<double>& numbers)
{
    const int count = pdf_array_len(ctx, array);
    if (count > most)
        return;
    numbers.clear();
    for (int i = 0; i < count; ++i)
        numbers.push_back(static_cast<double>(pdf_array_get_real(ctx, array, i)));
}

void readColour(fz_context* ctx, pdf_obj* array, std::vector<double>& colour)
{
    readNumbers(ctx, array, 4, colour);
    // Two components are no colour.
    if (colour.size() == 2)
        colour.clear();
}

/// True where there was a colour to set.
bool setColour(ContentStream& content, const std::vector<double>& colour, bool isStroke)
{
    switch (colour.size()) {
    case 1:
        content.add({colour[0]}, isStroke ? "G" : "g");
        return true;
    case 3:
        content.add({colour[0], colour[1], colour[2]}, isStroke ? "RG" : "rg");
        return true;
    case 4:
        content.add({colour[0], colour[1], colour[2], colour[3]}, isStroke ? "K" : "k");
        return true;
    default:
        return false;
    }
}

/// The two edges inside of a border that make it look raised or sunken.
void drawEdges(ContentStream& content, double width, QSizeF size, const double (&light)[2])
{
    const double right = size.width() - width;
    const double top = size.height() - width;
    content.add({light[0]}, "g");
    content.add({width, width}, "m");
    content.add({width, top}, "l");
    content.add({right, top}, "l");
    content.add({right - width, top - width}, "l");
    content.add({2 * width, top - width}, "l");
    content.add({2 * width, 2 * width}, "l");
    content.add({}, "f");
    content.add({light[1]}, "g");
    content.add({right, top}, "m");
    content.add({right, width}, "l");
    content.add({width, width}, "l");
    content.add({2 * width, 2 * width}, "l");
    content.add({right - width, 2 * width}, "l");
    content.add({right - width, top - width}, "l");
    content.add({}, "f");
}

void setStroke(ContentStream& content, const FieldFrame& frame)
{
    content.add({frame.width}, "w");
    if (frame.style != FieldFrame::Style::dashed)
        return;
    QByteArray dashes = "[";
    for (const double dash : frame.dashes)
        dashes += contentNumber(std::max(0.0, dash)) + ' ';
    content.addRaw(dashes + "] 0 d");
}

void addCircle(ContentStream& content, QPointF middle, double radius, const char* paint)
{
    const double x = middle.x();
    const double y = middle.y();
    const double r = std::max(0.0, radius);
    const double c = r * quarterCircle;
    content.add({x + r, y}, "m");
    content.add({x + r, y + c, x + c, y + r, x, y + r}, "c");
    content.add({x - c, y + r, x - r, y + c, x - r, y}, "c");
    content.add({x - r, y - c, x - c, y - r, x, y - r}, "c");
    content.add({x + c, y - r, x + r, y - c, x + r, y}, "c");
    content.add({}, paint);
}

} // namespace

void readFrame(fz_context* ctx, pdf_obj* widget, FieldFrame& frame)
{
    pdf_obj* look = pdf_dict_get(ctx, widget, PDF_NAME(MK));
    readColour(ctx, pdf_dict_get(ctx, look, PDF_NAME(BC)), frame.borderColour);
    readColour(ctx, pdf_dict_get(ctx, look, PDF_NAME(BG)), frame.backgroundColour);

    pdf_obj* border = pdf_dict_get(ctx, widget, PDF_NAME(Border));
    if (pdf_array_len(ctx, border) >= 3)
        frame.width = static_cast<double>(pdf_array_get_real(ctx, border, 2));
    if (pdf_array_len(ctx, border) >= 4) {
        frame.style = FieldFrame::Style::dashed;
        readNumbers(ctx, pdf_array_get(ctx, border, 3), mostDashes, frame.dashes);
    }
    pdf_obj* style = pdf_dict_get(ctx, widget, PDF_NAME(BS));
    if (pdf_obj* width = pdf_dict_get(ctx, style, PDF_NAME(W)))
        frame.width = static_cast<double>(pdf_to_real(ctx, width));
    if (pdf_obj* dashes = pdf_dict_get(ctx, style, PDF_NAME(D)))
        readNumbers(ctx, dashes, mostDashes, frame.dashes);
    const char* name = pdf_to_name(ctx, pdf_dict_get(ctx, style, PDF_NAME(S)));
    constexpr std::pair<const char*, FieldFrame::Style> styles[] = {
        {"S", FieldFrame::Style::solid},      {"D", FieldFrame::Style::dashed},
        {"B", FieldFrame::Style::beveled},    {"I", FieldFrame::Style::inset},
        {"U", FieldFrame::Style::underlined},
    };
    for (const auto& [key, value] : styles) {
        if (std::strcmp(name, key) == 0)
            frame.style = value;
    }
    frame.width = std::clamp(frame.width, 0.0, largestWidth);
}

void drawFrame(ContentStream& content, const FieldFrame& frame, QSizeF size, int cells)
{
    const QRectF whole(QPointF(), size);
    content.add({}, "q");
    if (frame.backgroundOpacity < 1.0)
        content.addRaw("/Background gs");
    if (setColour(content, frame.backgroundColour, false))
        content.addRectangle(whole, "f");
    content.add({}, "Q");
    content.add({}, "q");
    if (frame.hasBorder()) {
        if (frame.style == FieldFrame::Style::beveled)
            drawEdges(content, frame.width, size, beveledEdges);
        else if (frame.style == FieldFrame::Style::inset)
            drawEdges(content, frame.width, size, insetEdges);
        setColour(content, frame.borderColour, true);
        setStroke(content, frame);
        const double half = frame.width / 2.0;
        if (frame.style == FieldFrame::Style::underlined) {
            content.add({0.0, half}, "m");
            content.add({size.width(), half}, "l");
            content.add({}, "S");
        } else {
            content.addRectangle(whole.adjusted(half, half, -half, -half), "S");
        }
        for (int i = 1; i < cells; ++i) {
            const double x = size.width() * i / cells;
            content.add({x, 0.0}, "m");
            content.add({x, size.height()}, "l");
            content.add({}, "S");
        }
    }
    content.add({}, "Q");
}

void drawRoundFrame(ContentStream& content, const FieldFrame& frame, QSizeF size)
{
    content.add({}, "q");
    const QPointF middle(size.width() / 2.0, size.height() / 2.0);
    const double radius = std::min(size.width(), size.height()) / 2.0;
    if (setColour(content, frame.backgroundColour, false))
        addCircle(content, middle, radius, "f");
    if (frame.hasBorder()) {
        setColour(content, frame.borderColour, true);
        setStroke(content, frame);
        addCircle(content, middle, radius - frame.width / 2.0, "s");
    }
    content.add({}, "Q");
}

} // namespace pdf
