// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "pdf/PDFLink.h"

#include <mupdf/pdf.h>

#include <vector>

namespace pdf {

class DocumentHandle;
class PageHandle;

/// Reads the links of a page in the order in which it lists them. Links that are hidden are left out, damaged
/// ones are inert. Must run within an operation; may throw as MuPDF does.
void readLinks(
    fz_context* ctx, DocumentHandle& document, const PageHandle& page, std::vector<PDFLink>& links);

} // namespace pdf
