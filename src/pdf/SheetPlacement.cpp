// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/SheetPlacement.h"

#include <QRectF>

#include <algorithm>

namespace pdf {
namespace {

// A page that is nearly as wide as high lies across no paper.
constexpr double visibleDifference = 1.0;

bool liesAcross(QSizeF page, QSizeF paper)
{
    const double pageDifference = page.width() - page.height();
    const double paperDifference = paper.width() - paper.height();
    return std::min(std::abs(pageDifference), std::abs(paperDifference)) >= visibleDifference &&
           (pageDifference > 0) != (paperDifference > 0);
}

/// The edges of a sheet that was turned clockwise.
QMarginsF turned(const QMarginsF& margins)
{
    return {margins.bottom(), margins.left(), margins.top(), margins.right()};
}

/// What is left of the paper, y upwards; all of it where the margins would leave nothing.
QRectF printableArea(QSizeF paper, const QMarginsF& margins)
{
    const QRectF area(
        margins.left(), margins.bottom(), paper.width() - margins.left() - margins.right(),
        paper.height() - margins.top() - margins.bottom());
    return area.isValid() ? area : QRectF(QPointF(), paper);
}

double scaleFor(PageScaling scaling, QSizeF page, QSizeF area)
{
    if (scaling == PageScaling::actualSize)
        return 1.0;
    const double fitting = std::min(area.width() / page.width(), area.height() / page.height());
    return scaling == PageScaling::fit ? fitting : std::min(1.0, fitting);
}

} // namespace

SheetPlacement placeOnSheet(const PrintLayout& layout, QSizeF page)
{
    const PageTurning turning = liesAcross(page, layout.paper) ? layout.turning : PageTurning::none;
    const bool turnsPaper = turning == PageTurning::paper;
    SheetPlacement result;
    result.paper = turnsPaper ? layout.paper.transposed() : layout.paper;
    const QRectF area = printableArea(result.paper, turnsPaper ? turned(layout.margins) : layout.margins);
    const QSizeF lying = turning == PageTurning::page ? page.transposed() : page;
    const double scale = scaleFor(layout.scaling, lying, area.size());
    result.scale = scale;

    const QSizeF size = lying * scale;
    const double left = area.left() + (area.width() - size.width()) / 2;
    const double bottom = area.top() + (area.height() - size.height()) / 2;
    result.displayToSheet = turning == PageTurning::page
                                ? QTransform(0, scale, scale, 0, left, bottom)
                                : QTransform(scale, 0, 0, -scale, left, bottom + size.height());
    return result;
}

} // namespace pdf
