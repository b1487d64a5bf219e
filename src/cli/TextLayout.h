// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "cli/Terminal.h"

#include <QString>
#include <QStringList>
#include <QStringView>

#include <vector>

namespace quillo::cli {

/// The columns that the text takes on a terminal: two for each wide character (Chinese, emoji), none for what
/// combines with the character before.
int displayWidth(QStringView text);

/// Breaks text at spaces and line feeds into lines of at most this many columns; a longer word is cut between
/// user-perceived characters. At least one line; the width has to be positive.
QStringList wrapped(QStringView text, int width);

/// A piece of a row.
struct Cell
{
    QString text;
    Style style = Style::plain;
    /// Columns; the text is wrapped to it.
    int width = 0;
};

/// Sets the cells side by side, two columns apart, each over as many lines as it needs, every line ending
/// with a line feed and holding no spaces at its end.
QString row(const std::vector<Cell>& cells, const Terminal& terminal, int indent = 0);

/// The columns between two cells.
constexpr int cellGap = 2;

} // namespace quillo::cli
