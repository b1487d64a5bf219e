// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "writer/PdfFile.h"

#include <cstddef>
#include <functional>

namespace samples {

/// Writes a balanced page tree, so that the way to any page is short however many there are, and returns its
/// root. `writePage` is called for every page in order with the page's index and the node that the page has
/// to name as its parent, and returns the page's object.
PdfFile::Ref writePageTree(
    PdfFile& file, std::size_t pageCount,
    const std::function<PdfFile::Ref(std::size_t index, PdfFile::Ref parent)>& writePage);

} // namespace samples
