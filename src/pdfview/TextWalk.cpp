// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdfview/TextWalk.h"

#include "pdf/TextLayer.h"

#include <QTextBoundaryFinder>

#include <algorithm>

namespace pdf {
namespace {

bool isLineFeed(const TextLayer& text, qsizetype index)
{
    return text.string()[index] == QLatin1Char('\n');
}

/// Marks stay on their letters, and halves of surrogate pairs together.
qsizetype nextCharacter(const TextLayer& text, qsizetype from, bool isForward)
{
    if (isLineFeed(text, isForward ? from : from - 1))
        return isForward ? from + 1 : from - 1;
    const TextRange line = text.lineRange(from);
    const QStringView characters = QStringView(text.string()).mid(line.location, line.length);
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, characters.data(), characters.size());
    finder.setPosition(from - line.location);
    return line.location + (isForward ? finder.toNextBoundary() : finder.toPreviousBoundary());
}

bool isWord(const TextLayer& text, TextRange range)
{
    const QChar first = text.string()[range.location];
    return first.isLetterOrNumber() || first.isSurrogate();
}

std::optional<qsizetype> endOfWord(const TextLayer& text, qsizetype from)
{
    const qsizetype end = endOfText(text);
    while (from < end) {
        if (isLineFeed(text, from)) {
            ++from;
            continue;
        }
        const TextRange run = text.wordRange(from);
        if (isWord(text, run))
            return run.end();
        from = std::max(run.end(), from + 1);
    }
    return std::nullopt;
}

std::optional<qsizetype> startOfWord(const TextLayer& text, qsizetype from)
{
    while (from > 0) {
        if (isLineFeed(text, from - 1)) {
            --from;
            continue;
        }
        const TextRange run = text.wordRange(from - 1);
        if (isWord(text, run))
            return run.location;
        from = std::min(run.location, from - 1);
    }
    return std::nullopt;
}

std::optional<qsizetype> nextLine(const TextLayer& text, qsizetype from, bool isForward, QPointF goal)
{
    const TextRange line = text.lineRange(from);
    if (isForward ? line.end() >= endOfText(text) : line.location == 0)
        return std::nullopt;
    return text.insertionIndex(goal, isForward ? line.end() + 1 : line.location - 1);
}

} // namespace

qsizetype endOfText(const TextLayer& text)
{
    return text.string().size() - 1;
}

std::optional<qsizetype> moved(const TextLayer& text, qsizetype from, TextMove move, QPointF goal)
{
    const bool isAtEnd = move.isForward ? from >= endOfText(text) : from <= 0;
    switch (move.step) {
    case TextStep::character:
        return isAtEnd ? std::nullopt : std::optional(nextCharacter(text, from, move.isForward));
    case TextStep::word:
        return move.isForward ? endOfWord(text, from) : startOfWord(text, from);
    case TextStep::line:
        return nextLine(text, from, move.isForward, goal);
    case TextStep::endOfLine: {
        const TextRange line = text.lineRange(from);
        return move.isForward ? line.end() : line.location;
    }
    case TextStep::endOfDocument:
        break;
    }
    return std::nullopt;
}

std::optional<qsizetype> arrived(const TextLayer& text, TextMove move, QPointF goal)
{
    const qsizetype edge = move.isForward ? 0 : endOfText(text);
    if (move.step == TextStep::word)
        return moved(text, edge, move, goal);
    return move.step == TextStep::line ? text.insertionIndex(goal, edge) : edge;
}

bool isRightToLeft(const TextLayer& text, qsizetype place)
{
    const TextRange line = text.lineRange(place);
    return QStringView(text.string()).mid(line.location, line.length).isRightToLeft();
}

} // namespace pdf
