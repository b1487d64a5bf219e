// SPDX-License-Identifier: AGPL-3.0-or-later
#include "documents/Samples.h"

#include "writer/Canvas.h"
#include "writer/Document.h"
#include "writer/PageTree.h"

namespace samples {

std::string makeOneColour(std::size_t pageCount, unsigned rgb)
{
    PdfFile file;
    Canvas canvas;
    canvas.fill({0, 0, a4.width, a4.height}, colour(rgb));
    const PdfFile::Ref content = file.addStream("", canvas.content(), PdfFile::Compression::none);
    const std::string rest = "/MediaBox" + numbers({0, 0, a4.width, a4.height}) + "/Resources<<>>/Contents " +
                             reference(content) + ">>";
    const PdfFile::Ref pages = writePageTree(file, pageCount, [&](std::size_t, PdfFile::Ref parent) {
        return file.add("<</Type/Page/Parent " + reference(parent) + rest);
    });
    return file.finish(file.add("<</Type/Catalog/Pages " + reference(pages) + ">>"), 0);
}

} // namespace samples
