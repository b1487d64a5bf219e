// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "pdf/PDFFormField.h"

#include <mupdf/pdf.h>

namespace pdf::fields {

/// Measures where the widget's appearance shows the options of its list box, whoever made it, so that they
/// can stay there. To be called when all else of the field is read. The field has no rows after it where the
/// appearance shows fewer than two of them, or not as a list of the field's options. Reads some kilobytes at
/// most and no fonts. May throw as MuPDF does, but not for damage.
void readOptionRows(fz_context* ctx, pdf_obj* widget, PDFFormField& field);

} // namespace pdf::fields
