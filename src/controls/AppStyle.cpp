// SPDX-License-Identifier: AGPL-3.0-or-later
#include "controls/AppStyle.h"

#include "platform/Theme.h"

#include <QPainter>
#include <QStyleOption>

namespace quillo {
namespace {

constexpr int roomInHint = 6;

} // namespace

AppStyle::AppStyle()
    : QProxyStyle(QStringLiteral("Fusion"))
{}

int AppStyle::pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const
{
    return metric == PM_ToolTipLabelFrameWidth ? roomInHint
                                               : QProxyStyle::pixelMetric(metric, option, widget);
}

void AppStyle::drawPrimitive(
    PrimitiveElement element, const QStyleOption* option, QPainter* painter, const QWidget* widget) const
{
    if (element != PE_PanelTipLabel)
        return QProxyStyle::drawPrimitive(element, option, painter, widget);
    painter->fillRect(option->rect, Theme::current().color(ThemeColor::separator));
    const double hairline = 1.0 / painter->device()->devicePixelRatioF();
    painter->fillRect(
        QRectF(option->rect).adjusted(hairline, hairline, -hairline, -hairline),
        option->palette.color(QPalette::ToolTipBase));
}

} // namespace quillo
