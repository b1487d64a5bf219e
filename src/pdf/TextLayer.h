// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "pdf/TextRange.h"

#include <QPolygonF>
#include <QRectF>
#include <QString>
#include <QTransform>

#include <vector>

namespace pdf {

struct PageGlyphs;

/// A page's text with the place of every character. Immutable, so any number of threads may read it. Indices
/// count UTF-16 code units of string(); points, boxes and outlines are in page space.
class TextLayer
{
public:
    /// `displayToPage` maps what the glyphs are measured in to page space.
    TextLayer(const PageGlyphs& glyphs, const QTransform& displayToPage);

    /// In reading order, each line with a line feed after it.
    const QString& string() const { return m_string; }

    /// The range without what of it lies outside the text.
    TextRange clipped(TextRange range) const;

    /// One rectangle for each line that the range touches; line feeds have none. The range must lie within
    /// the text. Costs time in proportion to the range.
    std::vector<QRectF> lineBounds(qsizetype start, qsizetype length) const;

    /// What to colour when the range is selected: for each line that it touches one shape as high as the
    /// line, or several where text of both directions is mixed. Shapes of slanted lines are slanted. The
    /// range must lie within the text.
    std::vector<QPolygonF> outlines(TextRange range) const;

    /// The character in whose place the point lies, or -1.
    qsizetype characterIndex(QPointF point) const;

    /// The place between two characters that is nearest to the point: in the nearest line, before or after
    /// the nearest character, as that one is read. 0 for a page without text.
    qsizetype insertionIndex(QPointF point) const;
    /// The same in the line that the character is part of, wherever the point lies. The index must lie within
    /// the text.
    qsizetype insertionIndex(QPointF point, qsizetype character) const;

    /// A line as high as the text at the place between two characters, from its foot to its top.
    QLineF caret(qsizetype index) const;

    /// The word, the run of white space or the punctuation mark that the character is part of; empty for an
    /// index outside the text.
    TextRange wordRange(qsizetype index) const;
    /// The line that the character is part of, without its line feed.
    TextRange lineRange(qsizetype index) const;

private:
    struct Box
    {
        float left, bottom, right, top;
    };
    /// Where a character stands along its line.
    struct Span
    {
        float from, to;
        bool isRightToLeft;
    };
    struct Line
    {
        qsizetype start = 0;
        qsizetype length = 0;
        /// The direction of writing and, a quarter counter-clockwise from it, the way to the tops of letters.
        QPointF along;
        QPointF up;
        double from = 0;
        double to = 0;
        double foot = 0;
        double top = 0;
    };

    /// The line of a character or of the line feed after it; the text must not be empty.
    const Line& lineOf(qsizetype index) const;
    const Line* nearestLine(QPointF point) const;
    qsizetype insertionIndex(QPointF point, const Line& line) const;
    QPointF pointOn(const Line& line, double along, double up) const;

    QString m_string;
    std::vector<Box> m_boxes;
    std::vector<Span> m_spans;
    std::vector<Line> m_lines;
};

} // namespace pdf
