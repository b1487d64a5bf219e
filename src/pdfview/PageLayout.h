// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <QSize>
#include <QSizeF>

#include <vector>

namespace pdf {

/// Where the pages of a document stand: one below the other, with a gap before, between and after them. A
/// pure value, in device pixels of the laid-out document, origin at its upper left.
///
/// The sizes of pages come in while the document is read. Until a page's own size is known it counts as large
/// as the first one that became known, so a layout costs memory and time for the known pages only, however
/// many pages there are.
class PageLayout
{
public:
    explicit PageLayout(int pageCount = 0);

    int pageCount() const { return m_pageCount; }

    /// Device pixels per point.
    double scale() const { return m_scale; }
    void setScale(double scale);

    /// The gap before, between and after the pages; also left and right of the widest one.
    int gap() const { return m_gap; }
    void setGap(int gap);

    /// The page's size in points as it is shown, rotation included. Absurd sizes are cut to what can be laid
    /// out.
    void setPageSize(int page, QSizeF points);
    bool isKnown(int page) const;
    /// True once any size is known; before that there is nothing to show.
    bool hasSizes() const { return !m_known.empty(); }
    /// In points.
    QSizeF pageSize(int page) const;

    QSize pixelSize(int page) const;
    /// The page's upper edge.
    qint64 top(int page) const;
    qint64 bottom(int page) const { return top(page) + pixelSize(page).height(); }
    /// The height of the whole document with its outer gaps.
    qint64 height() const;
    /// The width of the widest known page with its gaps.
    int width() const;

    /// The first page that ends below the line; the last page for lines below all. -1 without pages.
    int pageAt(qint64 y) const;

private:
    struct KnownPage
    {
        int page = 0;
        QSizeF points;
        QSize pixels;
        /// How much all known pages before this one are taller than the estimate, together.
        qint64 excessBefore = 0;
    };

    void measure();
    /// The first known page that is not before the given one.
    std::vector<KnownPage>::const_iterator firstKnownFrom(int page) const;
    const KnownPage* known(int page) const;

    int m_pageCount = 0;
    int m_gap = 0;
    double m_scale = 1.0;
    QSizeF m_estimate;
    QSize m_estimatedPixels;
    int m_widest = 0;
    qint64 m_excess = 0;
    /// By page.
    std::vector<KnownPage> m_known;
};

} // namespace pdf
