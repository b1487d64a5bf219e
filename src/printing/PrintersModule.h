// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "printing/PrinterDescription.h"

#include <QString>

#include <functional>
#include <vector>

namespace quillo {

/// The printers that there are, or why they cannot be told.
struct PrinterListing
{
    std::vector<PrinterDescription> printers;
    /// For the console; empty where they can be told.
    QString error;
};

/// May wait for the printing system; to be called on a thread that has the time.
using PrinterSource = std::function<PrinterListing()>;

/// Asks the printing system. What does so is a module in the folder that is loaded with the first call; until
/// then nothing of printing costs anything.
PrinterSource printersModule(const QString& folder);

} // namespace quillo

/// The module's one entry point. One thread at a time.
extern "C" Q_DECL_EXPORT void quilloListPrinters(std::vector<quillo::PrinterDescription>& printers);
