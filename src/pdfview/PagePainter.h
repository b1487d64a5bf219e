// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "pdfview/PageViewport.h"
#include "pdfview/TileCache.h"

#include <QColor>
#include <QString>

#include <map>

class QPainter;

namespace pdf {

/// Paints the visible pages from the pictures at hand: what is missing at the current scale is filled in from
/// another scale or from the small picture of the page, until the sharp one is there.
class PagePainter
{
public:
    struct Look
    {
        QColor surroundings;
        QColor edge;
        /// Device pixels per pixel of the painter's font.
        double fontScale = 1.0;
    };

    /// `fallbackScale` is a scale of which there may be pictures, too. In the place of a failed page stands
    /// its text, unless all that is visible of it was drawn before it failed.
    PagePainter(
        const PageViewport& viewport, TileCache& cache, const std::map<int, QString>& failedPages,
        double fallbackScale);

    /// Paints the exposed area. The painter's unit is the device pixel, its origin the view's upper left.
    void paint(QPainter& painter, const QRect& exposed, const Look& look);

    /// After painting: whether every visible page showed something of itself, and whether all was sharp.
    bool isAnythingMissing() const { return m_isAnythingMissing; }
    bool isSharp() const { return m_isSharp; }

private:
    void paintPage(QPainter& painter, int page, const QRect& exposed, const Look& look);
    bool paintSubstitute(QPainter& painter, int page, const QRect& area);
    static void paintFailure(QPainter& painter, const QRect& visible, const QString& text, const Look& look);

    const PageViewport& m_viewport;
    TileCache& m_cache;
    const std::map<int, QString>& m_failedPages;
    const double m_fallbackScale;
    bool m_isAnythingMissing = false;
    bool m_isSharp = true;
};

} // namespace pdf
