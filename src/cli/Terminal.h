// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringView>

namespace quillo::cli {

enum class Style { plain, bold, dim, accent };

/// What a report can expect of the place where it appears.
struct Terminal
{
    /// A person looks at it, not a program.
    bool isInteractive = false;
    bool hasColours = false;
    /// Columns.
    int width = 80;

    /// What standard output is. Colours are for terminals that know them, and NO_COLOR in the environment
    /// turns them off; where no terminal tells its width, COLUMNS does, and else it is 80.
    static Terminal ofStandardOutput();

    /// The text between the sequences that turn the style on and off, or as it is without colours.
    QString styled(QStringView text, Style style) const;
    /// Appends the same to a text.
    void appendStyled(QString& result, QStringView text, Style style) const;
};

} // namespace quillo::cli
