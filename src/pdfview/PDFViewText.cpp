// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdfview/HighlightedSelections.h"
#include "pdfview/PDFView.h"
#include "pdfview/PageReader.h"
#include "pdfview/SelectionEmphasis.h"
#include "pdfview/TextMarker.h"
#include "pdfview/TextRevealer.h"
#include "pdfview/TextSelector.h"

#include <QLineF>

#include <algorithm>
#include <limits>
#include <utility>

// The text in the view.
namespace pdf {
namespace {

// How strongly the colour of a selection tints the paper.
constexpr double selectionStrength = 0.5;

double distance(const QRectF& rect, QPointF point)
{
    const QPointF nearest(
        std::clamp(point.x(), rect.left(), rect.right()), std::clamp(point.y(), rect.top(), rect.bottom()));
    return QLineF(point, nearest).length();
}

} // namespace

int PDFView::page(QPointF viewPoint, bool nearest) const
{
    const auto visible = m_viewport.visiblePages();
    int best = -1;
    double least = nearest ? std::numeric_limits<double>::max() : 0.0;
    for (int page = visible.first; page <= visible.last; ++page) {
        const double away = distance(pageRect(page), viewPoint);
        if (away < least || away == 0.0) {
            least = away;
            best = page;
        }
    }
    return best;
}

std::optional<QTransform> PDFView::pageToView(int page) const
{
    const auto toDisplay = m_pageToDisplay.find(page);
    if (toDisplay == m_pageToDisplay.end())
        return std::nullopt;
    const QPointF origin = pageRect(page).topLeft();
    return toDisplay->second * QTransform::fromScale(m_scaleFactor, m_scaleFactor) *
           QTransform::fromTranslate(origin.x(), origin.y());
}

const std::optional<PDFSelection>& PDFView::currentSelection() const
{
    return m_selector->selection();
}

void PDFView::setCurrentSelection(std::optional<PDFSelection> selection, bool animate)
{
    m_selector->setSelection(std::move(selection));
    if (!animate)
        return;
    scrollSelectionToVisible();
    m_emphasis->begin();
}

void PDFView::scrollSelectionToVisible()
{
    const int page = m_selector->firstPage();
    m_revealer->reveal(page, m_selector->rangeOn(page), TextRevealer::Room::much);
}

void PDFView::clearSelection()
{
    setCurrentSelection(std::nullopt);
}

void PDFView::selectAll()
{
    m_selector->selectAll();
}

void PDFView::copySelection()
{
    m_selector->copy();
}

const std::vector<TextMatch>& PDFView::highlightedSelections() const
{
    return m_highlights->matches();
}

void PDFView::setHighlightedSelections(const std::vector<PDFSelection>& selections)
{
    std::vector<TextMatch> matches;
    matches.reserve(selections.size());
    for (const PDFSelection& selection : selections) {
        if (selection.document() != document())
            continue;
        for (const auto& part : selection.parts()) {
            matches.push_back(
                {part.page, static_cast<qint32>(part.range.location),
                 static_cast<qint32>(part.range.length)});
        }
    }
    m_highlights->set(std::move(matches));
    viewport()->update();
}

void PDFView::addHighlightedMatches(const std::vector<TextMatch>& matches)
{
    m_highlights->add(matches);
    viewport()->update();
}

void PDFView::paintText(QPainter& painter, const QRectF& exposed)
{
    m_highlights->paint(painter, exposed);
    const QColor color = TextMarker::tinted(palette().color(QPalette::Highlight), selectionStrength);
    const TextMarker marker(*this, *m_reader);
    const auto visible = m_viewport.visiblePages();
    for (int page = visible.first; page <= visible.last; ++page) {
        const TextRange range = m_selector->rangeOn(page);
        if (range.length > 0)
            TextMarker::fill(painter, marker.outline(page, range), color);
    }
}

} // namespace pdf
