// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <QPointF>
#include <QtGlobal>

#include <optional>

namespace pdf {

class TextLayer;

/// How far a key goes in a text.
enum class TextStep { character, word, line, endOfLine, endOfDocument };

struct TextMove
{
    TextStep step = TextStep::character;
    bool isForward = true;
};

// Where a move within a page leads. Places are between two characters of the page's text and before its last
// line feed; the text must not be empty. Steps by line aim at `goal`, a point in page space; steps to the end
// of the document are not for a page to tell.

/// The place before the page's last line feed.
qsizetype endOfText(const TextLayer& text);

/// From a place of the page; absent when that leads beyond the page.
std::optional<qsizetype> moved(const TextLayer& text, qsizetype from, TextMove move, QPointF goal);

/// From the page before or after it; absent when that leads on beyond this one.
std::optional<qsizetype> arrived(const TextLayer& text, TextMove move, QPointF goal);

/// Whether the line at the place is read from right to left, so that forward is to the left.
bool isRightToLeft(const TextLayer& text, qsizetype place);

} // namespace pdf
