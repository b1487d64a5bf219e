// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "pdf/GlyphCollector.h"
#include "pdf/TextLines.h"

#include <cstddef>
#include <vector>

namespace pdf {

/// Adds the text of annotations to that of the page's content, each where its reader comes across it. `order`
/// holds the indices of the page's lines in the order of reading and takes in the new ones.
///
/// An annotation that stands on the same line of writing as other text, such as the value of a field beside
/// its label, becomes part of that line, at the end of a word. Otherwise it comes after its label where that
/// stands right above its left edge, else after what is nearest above it in the same column. The further
/// lines of an annotation follow its first. Annotations without a visible character add nothing; where there
/// are too many to be compared with all lines, they come last.
void addAnnotations(
    TextLines& page, std::vector<std::size_t>& order, const std::vector<AnnotationGlyphs>& annotations);

} // namespace pdf
