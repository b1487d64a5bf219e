// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <QMarginsF>
#include <QSizeF>
#include <QString>

#include <vector>

namespace quillo {

/// A size of paper that can be printed on.
struct Paper
{
    /// What the printing system calls it.
    QString key;
    /// For people.
    QString name;
    /// In points, upright.
    QSizeF size;
    /// The edges that the printer cannot print on, in points.
    QMarginsF margins;
};

/// A printer of the system and what it can do.
struct PrinterDescription
{
    /// What the printing system calls it.
    QString name;
    /// For people; the name where it has none.
    QString description;
    bool isDefault = false;
    bool printsTwoSided = false;
    bool printsColour = false;
    std::vector<Paper> papers;
    /// The paper that is in it as a rule; an index of the above.
    std::size_t usualPaper = 0;
};

} // namespace quillo
