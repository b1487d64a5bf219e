// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "pdf/PDFDocument.h"
#include "pdf/TextRange.h"

#include <QObject>
#include <QPolygonF>
#include <QRectF>

#include <map>
#include <vector>

class QPainter;

namespace pdf {

class PDFView;
class PageReader;
class TextSelector;
class TextShift;

/// Marks texts of the shown document, such as all matches of a search. There may be any number of them: only
/// those on visible pages are ever looked at, and their shapes are kept from one frame to the next. Main
/// thread.
class HighlightedSelections : public QObject
{
    Q_OBJECT

public:
    HighlightedSelections(PDFView& view, const PageReader& reader, const TextSelector& selector);

    /// Sorted.
    const std::vector<TextMatch>& matches() const { return m_matches; }
    void set(std::vector<TextMatch> matches);
    /// Costs no more than the new ones where they come in the order of the document.
    void add(const std::vector<TextMatch>& matches);

    /// Marks what lies in the exposed area, but leaves out what is selected: that has a colour of its own.
    /// The painter's unit is the view point, its origin the viewport's upper left.
    void paint(QPainter& painter, const QRectF& exposed);

private:
    /// What is to be coloured on a page, in page space.
    struct Shapes
    {
        TextRange leftOut;
        std::vector<QPolygonF> polygons;
    };

    /// Marks what was marked where it is now; what was replaced is marked no more.
    void follow(int page, const TextShift& shift);
    /// Null while the page is not read.
    const Shapes* shapesOn(int page);

    PDFView& m_view;
    const PageReader& m_reader;
    const TextSelector& m_selector;
    std::vector<TextMatch> m_matches;
    std::map<int, Shapes> m_shapes;
};

} // namespace pdf
