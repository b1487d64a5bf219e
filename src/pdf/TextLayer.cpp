// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/TextLayer.h"

#include "pdf/AnnotationLines.h"
#include "pdf/ReadingOrder.h"
#include "pdf/TextColumns.h"
#include "pdf/TextLines.h"
#include "pdf/TextRows.h"

#include <QLineF>
#include <QTextBoundaryFinder>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>

namespace pdf {
namespace {

/// Maps distances along and across lines of writing from display space to page space. Pages are turned,
/// mirrored and scaled evenly, so a line stays a line of the same kind.
class LineMapping
{
public:
    LineMapping(const QTransform& displayToPage, fz_point direction)
    {
        const QPointF origin = displayToPage.map(QPointF(0, 0));
        const QPointF step = displayToPage.map(QPointF(direction.x, direction.y)) - origin;
        m_scale = std::hypot(step.x(), step.y());
        m_along = step / m_scale;
        m_up = {-m_along.y(), m_along.x()};
        m_alongOffset = QPointF::dotProduct(origin, m_along);
        m_upOffset = QPointF::dotProduct(origin, m_up);
    }

    QPointF along() const { return m_along; }
    QPointF up() const { return m_up; }
    double along(double distance) const { return m_alongOffset + m_scale * distance; }
    /// Display space counts downwards across a line.
    double up(double distance) const { return m_upOffset - m_scale * distance; }

private:
    double m_scale;
    QPointF m_along;
    QPointF m_up;
    double m_alongOffset;
    double m_upOffset;
};

struct Stretch
{
    double from;
    double to;
};

/// Sorts the stretches and joins those that are not further apart than the gap.
const std::vector<Stretch>& joined(std::vector<Stretch>& stretches, double gap)
{
    std::sort(stretches.begin(), stretches.end(), [](const Stretch& a, const Stretch& b) {
        return a.from < b.from;
    });
    std::size_t count = 0;
    for (const Stretch& next : stretches) {
        if (count > 0 && next.from <= stretches[count - 1].to + gap)
            stretches[count - 1].to = std::max(stretches[count - 1].to, next.to);
        else
            stretches[count++] = next;
    }
    stretches.resize(count);
    return stretches;
}

/// fz_transform_rect for the boxes of characters, which are neither empty nor infinite.
fz_rect mapped(const fz_rect& box, const fz_matrix& matrix)
{
    const float x1 = matrix.a * box.x0 + matrix.c * box.y0 + matrix.e;
    const float y1 = matrix.b * box.x0 + matrix.d * box.y0 + matrix.f;
    const float x2 = matrix.a * box.x1 + matrix.c * box.y1 + matrix.e;
    const float y2 = matrix.b * box.x1 + matrix.d * box.y1 + matrix.f;
    // Pages are turned by quarters, so two corners tell all.
    return {std::min(x1, x2), std::min(y1, y2), std::max(x1, x2), std::max(y1, y2)};
}

double distanceOutside(double value, double from, double to)
{
    return std::max({from - value, value - to, 0.0});
}

} // namespace

TextLayer::TextLayer(const PageGlyphs& glyphs, const QTransform& displayToPage)
{
    TextLines text = textLines(glyphs.content);
    joinRows(text);
    splitColumns(text);
    std::vector<std::size_t> order = readingOrder(text.lines);
    if (!glyphs.annotations.empty())
        addAnnotations(text, order, glyphs.annotations);
    const fz_matrix matrix = {float(displayToPage.m11()), float(displayToPage.m12()),
                              float(displayToPage.m21()), float(displayToPage.m22()),
                              float(displayToPage.dx()),  float(displayToPage.dy())};
    const std::size_t atLeast = text.characters.size() + text.lines.size();
    m_string.reserve(static_cast<qsizetype>(atLeast));
    m_boxes.reserve(atLeast);
    m_spans.reserve(atLeast);
    m_lines.reserve(text.lines.size());
    for (const std::size_t index : order) {
        const TextLine& line = text.lines[index];
        const LineMapping mapping(displayToPage, line.direction);
        Line& place = m_lines.emplace_back();
        place = {m_string.size(),     0, mapping.along(), mapping.up(), 0, 0, mapping.up(line.foot),
                 mapping.up(line.top)};
        place.from = std::numeric_limits<double>::max();
        place.to = std::numeric_limits<double>::lowest();
        for (std::size_t i = line.first; i < line.first + line.count; ++i) {
            const TextCharacter& character = text.characters[i];
            const fz_rect rect = mapped(character.box, matrix);
            const Box box = {rect.x0, rect.y0, rect.x1, rect.y1};
            const double from = mapping.along(character.from);
            const double to = mapping.along(character.to);
            place.from = std::min(place.from, from);
            place.to = std::max(place.to, to);
            const Span span = {static_cast<float>(from), static_cast<float>(to), character.isRightToLeft};
            for (const char16_t unit : QChar::fromUcs4(character.code)) {
                m_string.append(QChar(unit));
                m_boxes.push_back(box);
                m_spans.push_back(span);
            }
        }
        place.length = m_string.size() - place.start;
        m_string.append(QLatin1Char('\n'));
        m_boxes.push_back({});
        m_spans.push_back({});
    }
}

TextRange TextLayer::clipped(TextRange range) const
{
    const qsizetype start = std::clamp<qsizetype>(range.location, 0, m_string.size());
    return {start, std::clamp<qsizetype>(range.length, 0, m_string.size() - start)};
}

std::vector<QRectF> TextLayer::lineBounds(qsizetype start, qsizetype length) const
{
    std::vector<QRectF> result;
    const qsizetype end = start + length;
    for (qsizetype i = start; i < end; ++i) {
        if (m_string[i] == QLatin1Char('\n'))
            continue;
        Box line = m_boxes[static_cast<std::size_t>(i)];
        for (++i; i < end && m_string[i] != QLatin1Char('\n'); ++i) {
            const Box& box = m_boxes[static_cast<std::size_t>(i)];
            line = {
                std::min(line.left, box.left), std::min(line.bottom, box.bottom),
                std::max(line.right, box.right), std::max(line.top, box.top)};
        }
        result.emplace_back(QPointF(line.left, line.bottom), QPointF(line.right, line.top));
    }
    return result;
}

std::vector<QPolygonF> TextLayer::outlines(TextRange range) const
{
    std::vector<QPolygonF> result;
    std::vector<Stretch> stretches;
    for (qsizetype i = range.location; i < range.end();) {
        const Line& line = lineOf(i);
        const qsizetype end = std::min(range.end(), line.start + line.length);
        stretches.clear();
        for (; i < end; ++i) {
            const Span& span = m_spans[static_cast<std::size_t>(i)];
            stretches.push_back({span.from, span.to});
        }
        for (const Stretch& part : joined(stretches, (line.top - line.foot) / 2)) {
            result.push_back(QPolygonF(QList<QPointF>{
                pointOn(line, part.from, line.foot), pointOn(line, part.to, line.foot),
                pointOn(line, part.to, line.top), pointOn(line, part.from, line.top)}));
        }
        // The line feed shows nothing.
        i = std::max(i, line.start + line.length + 1);
    }
    return result;
}

qsizetype TextLayer::characterIndex(QPointF point) const
{
    for (const Line& line : m_lines) {
        const double along = QPointF::dotProduct(point, line.along);
        const double up = QPointF::dotProduct(point, line.up);
        if (along < line.from || along > line.to || up < line.foot || up > line.top)
            continue;
        for (qsizetype i = line.start; i < line.start + line.length; ++i) {
            const Span& span = m_spans[static_cast<std::size_t>(i)];
            if (along >= span.from && along <= span.to)
                return i;
        }
    }
    return -1;
}

qsizetype TextLayer::insertionIndex(QPointF point) const
{
    const Line* line = nearestLine(point);
    return line ? insertionIndex(point, *line) : 0;
}

qsizetype TextLayer::insertionIndex(QPointF point, qsizetype character) const
{
    return insertionIndex(point, lineOf(character));
}

qsizetype TextLayer::insertionIndex(QPointF point, const Line& line) const
{
    const double along = QPointF::dotProduct(point, line.along);
    qsizetype nearest = line.start;
    double least = std::numeric_limits<double>::max();
    for (qsizetype i = line.start; i < line.start + line.length; ++i) {
        const Span& span = m_spans[static_cast<std::size_t>(i)];
        const double distance = distanceOutside(along, span.from, span.to);
        // Of overlapping characters, as marks are on their letters, the one whose middle is nearer.
        const double fromMiddle = std::abs(along - (span.from + span.to) / 2);
        if (distance * 1e6 + fromMiddle < least) {
            least = distance * 1e6 + fromMiddle;
            nearest = i;
        }
    }
    const Span& span = m_spans[static_cast<std::size_t>(nearest)];
    const bool isInRightHalf = along > (span.from + span.to) / 2;
    if (isInRightHalf == span.isRightToLeft)
        return nearest;
    // The two halves of a surrogate pair stay together.
    return nearest + (m_string[nearest].isHighSurrogate() ? 2 : 1);
}

QLineF TextLayer::caret(qsizetype index) const
{
    if (m_lines.empty())
        return {};
    const Line& line = lineOf(std::clamp<qsizetype>(index, 0, m_string.size() - 1));
    const bool isBefore = index < line.start + line.length;
    const Span& span = m_spans[static_cast<std::size_t>(
        isBefore ? std::max(index, line.start) : line.start + line.length - 1)];
    const double along = isBefore == span.isRightToLeft ? span.to : span.from;
    return {pointOn(line, along, line.foot), pointOn(line, along, line.top)};
}

TextRange TextLayer::wordRange(qsizetype index) const
{
    const TextRange line = lineRange(index);
    if (line.length == 0)
        return line;
    const qsizetype last = line.end() - 1;
    const QStringView text = QStringView(m_string).mid(line.location, line.length);
    QTextBoundaryFinder finder(QTextBoundaryFinder::Word, text.data(), text.size());
    const qsizetype inLine = std::min(index, last) - line.location;
    finder.setPosition(inLine);
    qsizetype start = finder.isAtBoundary() ? inLine : finder.toPreviousBoundary();
    finder.setPosition(inLine);
    qsizetype end = finder.toNextBoundary();
    if (end < 0)
        end = text.size();
    start = std::max<qsizetype>(start, 0);
    const auto isSpace = [&](qsizetype position) { return text[position].isSpace(); };
    if (isSpace(inLine)) {
        while (start > 0 && isSpace(start - 1))
            --start;
        while (end < text.size() && isSpace(end))
            ++end;
    }
    return {line.location + start, end - start};
}

TextRange TextLayer::lineRange(qsizetype index) const
{
    if (index < 0 || index >= m_string.size())
        return {};
    const Line& line = lineOf(index);
    return {line.start, line.length};
}

const TextLayer::Line& TextLayer::lineOf(qsizetype index) const
{
    const auto after =
        std::upper_bound(m_lines.begin(), m_lines.end(), index, [](qsizetype position, const Line& line) {
            return position < line.start;
        });
    return *std::prev(after);
}

const TextLayer::Line* TextLayer::nearestLine(QPointF point) const
{
    const Line* nearest = nullptr;
    double least = std::numeric_limits<double>::max();
    for (const Line& line : m_lines) {
        const double aside = distanceOutside(QPointF::dotProduct(point, line.along), line.from, line.to);
        const double above = distanceOutside(QPointF::dotProduct(point, line.up), line.foot, line.top);
        // Beside a line one means that line, even where another one reaches a little further.
        const double distance = above == 0 ? aside / 2 : std::hypot(aside, above);
        if (distance < least) {
            least = distance;
            nearest = &line;
        }
    }
    return nearest;
}

QPointF TextLayer::pointOn(const Line& line, double along, double up) const
{
    return line.along * along + line.up * up;
}

} // namespace pdf
