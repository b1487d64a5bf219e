// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "printing/PrinterDescription.h"

#include <vector>

namespace quillo {

/// The printers that the system has, with what it knows of them. May wait for the printing system.
std::vector<PrinterDescription> listPrinters();

} // namespace quillo
