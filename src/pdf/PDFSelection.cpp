// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/PDFSelection.h"

#include "pdf/PDFDocument.h"
#include "pdf/PDFPage.h"
#include "pdf/TextLayer.h"

#include <algorithm>
#include <utility>

namespace pdf {

PDFSelection::PDFSelection(std::shared_ptr<PDFDocument> document, std::vector<Part> parts, QString string)
    : m_document(std::move(document))
    , m_parts(std::move(parts))
    , m_string(std::move(string))
{}

std::vector<std::shared_ptr<PDFPage>> PDFSelection::pages() const
{
    std::vector<std::shared_ptr<PDFPage>> pages;
    for (const Part& part : m_parts) {
        if (auto page = m_document->page(part.page))
            pages.push_back(std::move(page));
    }
    return pages;
}

QRectF PDFSelection::bounds(PDFPage& page) const
{
    QRectF bounds;
    for (const QRectF& line : lineBounds(page))
        bounds |= line;
    return bounds;
}

std::vector<QRectF> PDFSelection::lineBounds(PDFPage& page) const
{
    if (page.document() != m_document)
        return {};
    const auto part = std::find_if(
        m_parts.begin(), m_parts.end(), [&](const Part& other) { return other.page == page.index(); });
    if (part == m_parts.end())
        return {};
    const auto text = part->text ? part->text : page.text();
    if (!text)
        return {};
    const TextRange range = text->clipped(part->range);
    return text->lineBounds(range.location, range.length);
}

bool operator==(const PDFSelection& a, const PDFSelection& b)
{
    return a.m_document == b.m_document &&
           std::equal(
               a.m_parts.begin(), a.m_parts.end(), b.m_parts.begin(), b.m_parts.end(),
               [](const PDFSelection::Part& x, const PDFSelection::Part& y) {
                   return x.page == y.page && x.range == y.range;
               });
}

} // namespace pdf
