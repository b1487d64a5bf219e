// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "pdf/PrintLayout.h"

#include <QString>
#include <QStringList>

namespace quillo {

/// What the user wants printed, and on what.
struct PrintSettings
{
    /// Empty where a file is to be written.
    QString printer;
    QString file;
    /// Of copies only what is to be done before the sheets are handed over: all for a file, none for a
    /// printer, which makes them itself.
    pdf::PrintLayout layout;
    int printerCopies = 1;
    /// For the printing system, each as "name=value".
    QStringList printerOptions;
};

} // namespace quillo
