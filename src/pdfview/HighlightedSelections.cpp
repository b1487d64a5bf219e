// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdfview/HighlightedSelections.h"

#include "pdf/TextLayer.h"
#include "pdfview/PDFView.h"
#include "pdfview/PageReader.h"
#include "pdfview/TextMarker.h"
#include "pdfview/TextSelector.h"
#include "pdfview/TextShift.h"

#include <QPainter>

#include <algorithm>
#include <array>
#include <utility>

namespace pdf {
namespace {

// Pages are white paper in a light window and in a dark one, so the pen is the same in both.
constexpr QColor penColor(255, 204, 0);
constexpr double penStrength = 0.55;

/// What is left of the range before and after another one.
std::array<TextRange, 2> without(TextRange range, TextRange other)
{
    if (other.length == 0)
        return {range, TextRange()};
    const qsizetype end = std::min(range.end(), other.location);
    const qsizetype start = std::max(range.location, other.end());
    return {
        TextRange{range.location, std::max<qsizetype>(end - range.location, 0)},
        TextRange{start, std::max<qsizetype>(range.end() - start, 0)}};
}

} // namespace

HighlightedSelections::HighlightedSelections(
    PDFView& view, const PageReader& reader, const TextSelector& selector)
    : m_view(view)
    , m_reader(reader)
    , m_selector(selector)
{
    connect(&view, &PDFView::documentChanged, this, [this] { set({}); });
    connect(&reader, &PageReader::textChanged, this, &HighlightedSelections::follow);
    connect(&reader, &PageReader::pageRead, this, [this](int page) { m_shapes.erase(page); });
}

void HighlightedSelections::follow(int page, const TextShift& shift)
{
    const auto first = std::lower_bound(m_matches.begin(), m_matches.end(), TextMatch{page, 0, 0});
    const auto last = std::lower_bound(first, m_matches.end(), TextMatch{page + 1, 0, 0});
    const auto isReplaced = [&](TextMatch& match) {
        const auto start = shift.start(match.location);
        const auto end = shift.end(qsizetype{match.location} + match.length);
        if (!start || !end || *end - *start != match.length)
            return true;
        match.location = static_cast<qint32>(*start);
        return false;
    };
    m_matches.erase(std::remove_if(first, last, isReplaced), last);
}

void HighlightedSelections::set(std::vector<TextMatch> matches)
{
    m_matches = std::move(matches);
    std::sort(m_matches.begin(), m_matches.end());
    m_shapes.clear();
}

void HighlightedSelections::add(const std::vector<TextMatch>& matches)
{
    const auto middle = m_matches.insert(m_matches.end(), matches.begin(), matches.end());
    const auto sortedFrom = middle == m_matches.begin() ? middle : std::prev(middle);
    if (!std::is_sorted(sortedFrom, m_matches.end()))
        std::sort(m_matches.begin(), m_matches.end());
    m_shapes.clear();
}

void HighlightedSelections::paint(QPainter& painter, const QRectF& exposed)
{
    const auto visible = m_view.pageViewport().visiblePages();
    std::erase_if(m_shapes, [&](const auto& entry) {
        return entry.first < visible.first || entry.first > visible.last;
    });
    if (m_matches.empty())
        return;
    const QColor color = TextMarker::tinted(penColor, penStrength);
    for (int page = visible.first; page <= visible.last; ++page) {
        const auto toView = m_view.pageToView(page);
        const Shapes* shapes = toView ? shapesOn(page) : nullptr;
        if (!shapes)
            continue;
        QPainterPath path;
        path.setFillRule(Qt::WindingFill);
        for (const QPolygonF& polygon : shapes->polygons) {
            const QPolygonF shape = toView->map(polygon);
            if (!shape.boundingRect().intersects(exposed))
                continue;
            path.addPolygon(shape);
            path.closeSubpath();
        }
        TextMarker::fill(painter, path, color);
    }
}

const HighlightedSelections::Shapes* HighlightedSelections::shapesOn(int page)
{
    const TextLayer* text = m_reader.text(page);
    if (!text)
        return nullptr;
    const TextRange selected = text->clipped(m_selector.rangeOn(page));
    const auto known = m_shapes.find(page);
    if (known != m_shapes.end() && known->second.leftOut == selected)
        return &known->second;
    Shapes shapes = {selected, {}};
    const auto first = std::lower_bound(m_matches.begin(), m_matches.end(), TextMatch{page, 0, 0});
    for (auto match = first; match != m_matches.end() && match->page == page; ++match) {
        for (const TextRange part : without(text->clipped({match->location, match->length}), selected)) {
            const auto polygons = text->outlines(part);
            shapes.polygons.insert(shapes.polygons.end(), polygons.begin(), polygons.end());
        }
    }
    return &m_shapes.insert_or_assign(page, std::move(shapes)).first->second;
}

} // namespace pdf
