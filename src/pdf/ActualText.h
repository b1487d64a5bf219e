// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "pdf/GlyphCollector.h"

#include <mupdf/pdf.h>

namespace pdf {

/// Has the text that a content stream gives as the ActualText of marked content (ISO 32000-1, 14.9.4) stand
/// in the collector for the glyphs that it marks. Lives as long as the interpreter that it is attached to;
/// one at a time on a thread. A plain value, because MuPDF's errors skip destructors.
struct ActualText
{
    /// Takes over the operators of marked content and forms of a run processor, which draws on a device that
    /// adds to the collector. Never throws.
    void attach(pdf_processor* processor, GlyphCollector& glyphs);
    /// To be called when the processor is done, whether it failed or not.
    void detach(fz_context* ctx);

    GlyphCollector* collector = nullptr;
    /// Levels of marked content that are open in the current content stream and around it.
    int depth = 0;
    /// Those of them that the current content stream cannot close, because they are around it.
    int outerDepth = 0;
    /// The level whose glyphs are to be replaced, or 0. What is marked within it belongs to it.
    int replacedDepth = 0;
    pdf_obj* replacement = nullptr;
    std::size_t firstGlyph = 0;
    /// The operators as the processor had them.
    pdf_processor operators = {};
};

} // namespace pdf
