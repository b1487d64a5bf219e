// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "pdfview/PageLayout.h"

#include <QPoint>
#include <QRect>
#include <QSize>

#include <optional>

namespace pdf {

/// The part of a laid-out document that a view shows. It keeps still what the user looks at while the scale,
/// the size of the view or the known sizes of pages change. A pure value; everything is in device pixels,
/// view coordinates have their origin at the view's upper left.
class PageViewport
{
public:
    explicit PageViewport(int pageCount = 0);

    const PageLayout& layout() const { return m_layout; }

    QSize size() const { return m_size; }
    void setSize(QSize size);
    void setGap(int gap);

    double scale() const { return m_layout.scale(); }
    /// Keeps the point of the document under the given point of the view where it is.
    void setScale(double scale, QPoint fixedPoint);
    /// Keeps the current page where it is: what of it is in the middle of the view, or else its upper edge.
    void setScale(double scale);

    /// The visible page that matters most stays where it is, whatever else moves.
    void setPageSize(int page, QSizeF points);

    /// How far the document is scrolled, from its upper left.
    qint64 x() const { return m_x; }
    qint64 y() const { return m_y; }
    /// Sideways the view goes from edge to edge of the widest visible page and no further, however wide other
    /// pages are; visible pages that all fit into it stand in its middle.
    qint64 minimumX() const;
    qint64 maximumX() const;
    qint64 maximumY() const;
    /// Whether any known page is too wide for the view, visible or not.
    bool isWiderThanView() const;
    /// As far as the document goes.
    void scrollTo(qint64 x, qint64 y);

    /// Shows the page from its upper edge. It counts as the current page until the user scrolls on, even
    /// where the document ends too early for it to reach the upper edge of the view. Sideways the view moves
    /// as little as brings the page into it.
    void goToPage(int page);
    /// Shows the end of the document, sideways as goToPage() does.
    void goToEnd();
    /// Moves sideways by as little as brings the page into the view from edge to edge, or fills the view with
    /// it where it is wider. Nothing happens while it is not visible.
    void bringAcross(int page);

    /// The page counts as the current one, without being gone to, until the user scrolls on or it is not
    /// visible any more.
    void setCurrentPage(int page);
    /// The page that was gone to, or else the first of the pages of which most is visible. -1 without pages.
    int currentPage() const;

    struct Range
    {
        int first = 0;
        /// Before `first` when there is none.
        int last = -1;
    };
    Range visiblePages() const;

    /// The page's place in view coordinates.
    QRect pageRect(int page) const;

private:
    /// A place on a page: a part of its width and height, and what lies beyond its edges in pixels.
    struct Anchor
    {
        int page = 0;
        double partX = 0.0;
        double partY = 0.0;
        qint64 restX = 0;
        qint64 restY = 0;
        /// Where it is to be in the view.
        QPoint point;
    };
    struct RangeAcross
    {
        qint64 minimum = 0;
        qint64 maximum = 0;
    };
    struct Target
    {
        enum class Place { top, end, asItStands };
        int page = 0;
        Place place = Place::top;
    };

    std::optional<Anchor> anchorAt(QPoint viewPoint) const;
    std::optional<Anchor> mainAnchor() const;
    /// Where x may be so that the view shows nothing beside the page that it could show of it.
    RangeAcross rangeAcross(int page) const;
    RangeAcross visibleRangeAcross() const;
    /// Brings the anchor back to its point, or else the page that was gone to to the view's upper edge.
    void settle(const std::optional<Anchor>& anchor);
    void clamp();
    void moveToTarget();
    qint64 contentWidth() const;
    /// A document that is shorter than the view stands in its middle.
    qint64 marginAbove() const;
    qint64 pageLeft(int page) const;
    /// What part of the page is visible, of as much as could be.
    double visiblePart(int page) const;

    PageLayout m_layout;
    QSize m_size;
    qint64 m_x = 0;
    qint64 m_y = 0;
    std::optional<Target> m_target;
};

} // namespace pdf
