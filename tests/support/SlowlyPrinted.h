// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "support/PDFWriter.h"

/// Writes a document that takes minutes to print, because it allows no more than pictures of its pages; needs
/// qpdf. Gives its path.
QString writeSlowlyPrinted(const TestFolder& folder);
