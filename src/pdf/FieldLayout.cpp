// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/FieldLayout.h"

#include <QTextBoundaryFinder>

#include <algorithm>
#include <cmath>

namespace pdf {
namespace {

// For fields that fit the text to themselves.
constexpr double smallestSize = 4.0;
constexpr double paragraphSize = 12.0;
constexpr double sizeStep = 0.5;

/// Control characters have no glyphs.
QString printable(QString text)
{
    std::replace_if(
        text.begin(), text.end(), [](QChar c) { return c.unicode() < 0x20; }, QLatin1Char(' '));
    return text;
}

QString shownText(const PDFFormField& field)
{
    if (!field.isPassword)
        return field.text;
    return QString(field.text.toUcs4().size(), QChar(0x2022));
}

/// The size that fills the height, or less where the text is too wide for the room at that size.
double fittingSize(double height, double width, double textWidth)
{
    const double byHeight = height / FieldFont::lineHeight;
    const double byWidth = textWidth > 0.0 ? width / textWidth : byHeight;
    return std::max(smallestSize, std::min(byHeight, byWidth));
}

/// The baseline at which capitals stand in the middle, unless what hangs below them would be cut off.
double middleBaseline(double height, double inset, double size)
{
    const double middle = (height - FieldFont::capitalHeight * size) / 2.0;
    return std::max(middle, std::min(inset - FieldFont::descent * size, height / 2.0));
}

double alignedX(FormFieldAlignment alignment, double left, double right, double width)
{
    switch (alignment) {
    case FormFieldAlignment::centre:
        return std::max(left, (left + right - width) / 2.0);
    case FormFieldAlignment::right:
        return std::max(left, right - width);
    default:
        return left;
    }
}

/// Splits into characters as the user sees them.
QStringList graphemes(const QString& text)
{
    QStringList result;
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
    for (qsizetype start = 0, end = finder.toNextBoundary(); end >= 0;
         start = end, end = finder.toNextBoundary())
        result.append(text.mid(start, end - start));
    return result;
}

FieldLayout
layOutCells(const PDFFormField& field, QSizeF size, double inset, const QString& text, const FieldFont& font)
{
    FieldLayout layout;
    const QStringList characters = graphemes(text);
    const double cell = size.width() / field.maximumLength;
    double widest = 0.0;
    for (const QString& character : characters)
        widest = std::max(widest, font.width(character));
    layout.fontSize =
        field.fontSize > 0.0 ? field.fontSize : fittingSize(size.height() - 2.0 * inset, cell, widest);
    const double baseline = middleBaseline(size.height(), inset, layout.fontSize);
    const auto free = std::max<qsizetype>(0, field.maximumLength - characters.size());
    qsizetype place = 0;
    if (field.alignment == FormFieldAlignment::centre)
        place = free / 2;
    else if (field.alignment == FormFieldAlignment::right)
        place = free;
    for (const QString& character : characters) {
        const double width = font.width(character) * layout.fontSize;
        const double middle = (static_cast<double>(place++) + 0.5) * cell;
        layout.lines.push_back({character, QPointF(middle - width / 2.0, baseline)});
    }
    return layout;
}

FieldLayout layOutParagraphs(const PDFFormField& field, QSizeF size, double padding, const FieldFont& font)
{
    FieldLayout layout;
    const double width = std::max(1.0, size.width() - 2.0 * padding);
    const double height = size.height() - 2.0 * padding;
    layout.fontSize = field.fontSize > 0.0 ? field.fontSize : paragraphSize;
    const auto wrapped = [&] { return wrapText(field.text, width / layout.fontSize, font); };
    const auto fits = [&](const QStringList& lines) {
        return static_cast<double>(lines.size()) * layout.fontSize * FieldFont::lineHeight <= height;
    };
    QStringList lines = wrapped();
    while (field.fontSize <= 0.0 && layout.fontSize > smallestSize && !fits(lines)) {
        layout.fontSize -= sizeStep;
        lines = wrapped();
    }
    double top = size.height() - padding;
    for (const QString& line : lines) {
        const QString text = printable(line);
        const double x =
            alignedX(field.alignment, padding, size.width() - padding, font.width(text) * layout.fontSize);
        layout.lines.push_back({text, QPointF(x, top - FieldFont::ascent * layout.fontSize)});
        top -= FieldFont::lineHeight * layout.fontSize;
        if (top < 0.0)
            break;
    }
    return layout;
}

QRectF insideOf(QSizeF size, double inset)
{
    return QRectF(QPointF(), size).adjusted(inset, inset, -inset, -inset).normalized();
}

} // namespace

double borderInset(const PDFFormField& field)
{
    // Text keeps away from the edge even of a field without a border.
    return std::max(1.0, field.borderWidth * field.borderParts);
}

FieldLayout layOutText(const PDFFormField& field, QSizeF size, double inset, const FieldFont& font)
{
    const double padding = 2.0 * inset;
    FieldLayout layout;
    const QString text = shownText(field);
    if (field.isMultiline && !field.isPassword) {
        layout = layOutParagraphs(field, size, padding, font);
    } else if (field.isComb) {
        layout = layOutCells(field, size, inset, printable(text), font);
    } else {
        const QString line = printable(text);
        const double width = font.width(line);
        layout.fontSize =
            field.fontSize > 0.0
                ? field.fontSize
                : fittingSize(size.height() - 2.0 * padding, size.width() - 2.0 * padding, width);
        const double x = alignedX(field.alignment, padding, size.width() - padding, width * layout.fontSize);
        layout.lines.push_back({line, QPointF(x, middleBaseline(size.height(), inset, layout.fontSize))});
    }
    layout.clip = insideOf(size, inset);
    return layout;
}

FieldLayout
layOutOptions(const PDFFormField& field, QSizeF size, double inset, int top, const FieldFont& font)
{
    FieldLayout layout;
    layout.clip = insideOf(size, inset);
    const FormFieldRows rows = optionRows(field, inset);
    layout.fontSize = rows.fontSize;
    const double padding = 2.0 * inset;
    double y = size.height() - rows.top;
    for (auto i = static_cast<std::size_t>(top); i < field.options.size() && y > inset; ++i) {
        const QString text = printable(field.options[i].displayText);
        if (std::binary_search(field.selection.begin(), field.selection.end(), static_cast<int>(i)))
            layout.highlights.emplace_back(inset, y - rows.height, layout.clip.width(), rows.height);
        const double x = rows.left ? *rows.left
                                   : alignedX(
                                         field.alignment, padding, size.width() - padding,
                                         font.width(text) * layout.fontSize);
        layout.lines.push_back({text, QPointF(x, y - rows.baseline)});
        y -= rows.height;
    }
    return layout;
}

FormFieldRows optionRows(const PDFFormField& field, double inset)
{
    if (field.rows)
        return *field.rows;
    FormFieldRows rows;
    rows.fontSize = field.fontSize > 0.0 ? field.fontSize : paragraphSize;
    rows.top = inset;
    rows.height = FieldFont::lineHeight * rows.fontSize;
    rows.baseline = FieldFont::ascent * rows.fontSize;
    return rows;
}

int topOption(const PDFFormField& field, QSizeF size, double inset)
{
    const int count = static_cast<int>(field.options.size());
    const FormFieldRows rows = optionRows(field, inset);
    const int visible = std::max(1, static_cast<int>((size.height() - rows.top - inset) / rows.height));
    const int highest = std::clamp(field.topOption, 0, std::max(0, count - 1));
    if (field.selection.empty())
        return highest;
    const bool isAnyInSight = std::any_of(field.selection.begin(), field.selection.end(), [&](int i) {
        return i >= highest && i < highest + visible;
    });
    if (isAnyInSight)
        return highest;
    return std::clamp(field.selection.front(), 0, std::max(0, count - visible));
}

QStringList wrapText(const QString& text, double width, const FieldFont& font)
{
    QStringList lines;
    for (const QString& paragraph : text.split(QLatin1Char('\n'))) {
        lines.append(QString());
        double used = 0.0;
        const auto append = [&](const QString& piece) {
            // White space at the end of a line may stand beyond the edge.
            QStringView visible(piece);
            while (!visible.isEmpty() && visible.back().isSpace())
                visible.chop(1);
            if (used > 0.0 && used + font.width(visible) > width) {
                lines.append(QString());
                used = 0.0;
            }
            lines.last() += piece;
            used += font.width(piece);
        };
        QTextBoundaryFinder finder(QTextBoundaryFinder::Line, paragraph);
        for (qsizetype start = 0, end = finder.toNextBoundary(); end >= 0;
             start = end, end = finder.toNextBoundary()) {
            const QString piece = paragraph.mid(start, end - start);
            if (font.width(piece.trimmed()) <= width) {
                append(piece);
                continue;
            }
            for (const QString& character : graphemes(piece))
                append(character);
        }
    }
    return lines;
}

} // namespace pdf
