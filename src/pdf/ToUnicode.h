// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "pdf/CookieScope.h"
#include "pdf/PDFError.h"

#include <mupdf/pdf.h>

#include <QStringList>

#include <optional>
#include <vector>

namespace pdf {

/// Has the fonts of a form XObject that was made from a DrawnPage say which characters its glyphs stand for.
/// Qt names the first character that has the glyph in the font, which for Chinese is often a radical, for
/// Arabic a presentation form, and nothing for a ligature. Where characters share a glyph it stands for the
/// one that was drawn first. The object is found at the path below `owner`; `text` is that of the page.
std::optional<PDFError> writeToUnicode(
    CookieScope& scope, pdf_document* document, pdf_obj* owner, const char* path,
    const std::vector<QStringList>& text);

} // namespace pdf
