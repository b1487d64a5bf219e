// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "pdf/PrintLayout.h"

#include <QSizeF>
#include <QTransform>

namespace pdf {

/// A sheet of paper and where a page lies on it.
struct SheetPlacement
{
    /// In points.
    QSizeF paper;
    /// From the page's display space to the sheet, in points from its lower left corner, y upwards.
    QTransform displayToSheet;
    /// Points of the sheet per point of the page.
    double scale = 1.0;
};

/// `page` is the size of the page in display space.
SheetPlacement placeOnSheet(const PrintLayout& layout, QSizeF page);

} // namespace pdf
