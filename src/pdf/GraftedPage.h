// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <QByteArray>

#include <mupdf/pdf.h>

namespace pdf {

/// Takes over the first page of a PDF file, with its fonts and images, as a form XObject that shows the part
/// of the page within the box. The caller drops it. May throw as MuPDF does.
pdf_obj* graftPage(fz_context* ctx, pdf_document* document, const QByteArray& file, fz_rect box);

} // namespace pdf
