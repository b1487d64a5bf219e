// SPDX-License-Identifier: AGPL-3.0-or-later
#include "printers/PrinterList.h"
#include "printing/PrintersModule.h"

// What the program calls after it has loaded this module.
extern "C" Q_DECL_EXPORT void quilloListPrinters(std::vector<quillo::PrinterDescription>& printers)
{
    printers = quillo::listPrinters();
}
