// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "pdf/GlyphCollector.h"
#include "pdf/Handles.h"

#include <mupdf/pdf.h>

namespace pdf {

/// Interprets the page's content, and what its annotations and form fields look like, for their text alone:
/// images and shadings are not even loaded. Text in soft masks and outside the visible part of the page is
/// left out, and so are annotations that are not shown on the screen; invisible text, as recognition leaves
/// it over a scan, is not. Where the content or an annotation is damaged, the text before the damage is kept.
/// Under the document's lock, within an operation; may throw as MuPDF does.
void collectGlyphs(
    fz_context* ctx, pdf_document* document, PageHandle& page, PageGlyphs& glyphs, fz_cookie* cookie);

} // namespace pdf
