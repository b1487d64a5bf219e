// SPDX-License-Identifier: AGPL-3.0-or-later
#include "writer/PageTree.h"

#include <algorithm>
#include <vector>

namespace samples {
namespace {

constexpr std::size_t childrenPerNode = 32;

using WritePage = std::function<PdfFile::Ref(std::size_t, PdfFile::Ref)>;

// NOLINTNEXTLINE(misc-no-recursion): as deep as the tree, which has a handful of levels
PdfFile::Ref writeNode(
    PdfFile& file, std::size_t first, std::size_t count, PdfFile::Ref parent, const WritePage& writePage)
{
    std::size_t pagesPerChild = 1;
    while (pagesPerChild * childrenPerNode < count)
        pagesPerChild *= childrenPerNode;

    const PdfFile::Ref node = file.reserve();
    std::vector<PdfFile::Ref> children;
    for (std::size_t page = first; page < first + count; page += pagesPerChild) {
        const std::size_t size = std::min(pagesPerChild, first + count - page);
        children.push_back(
            pagesPerChild == 1 ? writePage(page, node) : writeNode(file, page, size, node, writePage));
    }
    std::string object = "<</Type/Pages/Count " + std::to_string(count) + "/Kids" + references(children);
    if (parent != 0)
        object += "/Parent " + reference(parent);
    file.set(node, object + ">>");
    return node;
}

} // namespace

PdfFile::Ref writePageTree(PdfFile& file, std::size_t pageCount, const WritePage& writePage)
{
    return writeNode(file, 0, pageCount, 0, writePage);
}

} // namespace samples
