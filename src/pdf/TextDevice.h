// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "pdf/GlyphCollector.h"
#include "pdf/Handles.h"

#include <mupdf/pdf.h>

namespace pdf {

/// Interprets the page's content for its text alone: images and shadings are not even loaded, and neither are
/// annotations and form fields. Text in soft masks and outside the visible part of the page is left out;
/// invisible text, as recognition leaves it over a scan, is not. Where the content is damaged, the text
/// before the damage is kept. Must run within an operation; may throw as MuPDF does.
void collectGlyphs(
    fz_context* ctx, pdf_document* document, const PageHandle& page, GlyphCollector& collector,
    fz_cookie* cookie);

} // namespace pdf
