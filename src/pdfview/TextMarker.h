// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "pdf/TextRange.h"

#include <QPainterPath>

class QColor;
class QPainter;

namespace pdf {

class PDFView;
class PageReader;

/// Paints text of a view as if with a marker pen: letters stay as black as they are.
class TextMarker
{
public:
    TextMarker(const PDFView& view, const PageReader& reader);

    /// The place of a text in the view, in view points, origin at the viewport's upper left; what lies beyond
    /// the end of the page's text is left out. Empty while the page is not read.
    QPainterPath outline(int page, TextRange range) const;

    /// How white paper looks under a marker of this strength, from 0 to 1.
    static QColor tinted(const QColor& color, double strength);

    static void fill(QPainter& painter, const QPainterPath& outline, const QColor& color);

private:
    const PDFView& m_view;
    const PageReader& m_reader;
};

} // namespace pdf
