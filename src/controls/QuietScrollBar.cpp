// SPDX-License-Identifier: AGPL-3.0-or-later
#include "controls/QuietScrollBar.h"

#include "platform/Theme.h"

#include <QPainter>
#include <QProxyStyle>
#include <QStyleOptionSlider>

#include <algorithm>

namespace quillo {
namespace {

constexpr int extent = 14;
constexpr int handleThickness = 7;
constexpr int smallestHandle = 36;

/// Only the look and the geometry of a scroll bar; everything else is the application's style's.
class QuietScrollBarStyle : public QProxyStyle
{
public:
    int pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const override
    {
        switch (metric) {
        case PM_ScrollBarExtent:
            return extent;
        case PM_ScrollBarSliderMin:
            return smallestHandle;
        default:
            return QProxyStyle::pixelMetric(metric, option, widget);
        }
    }

    QRect subControlRect(
        ComplexControl control, const QStyleOptionComplex* option, SubControl part,
        const QWidget* widget) const override
    {
        const auto* bar = qstyleoption_cast<const QStyleOptionSlider*>(option);
        if (control != CC_ScrollBar || !bar)
            return QProxyStyle::subControlRect(control, option, part, widget);
        const bool isHorizontal = bar->orientation == Qt::Horizontal;
        const int length = isHorizontal ? bar->rect.width() : bar->rect.height();
        const int handle = handleLength(*bar, length);
        const int start = sliderPositionFromValue(
            bar->minimum, bar->maximum, bar->sliderPosition, length - handle, bar->upsideDown);
        const auto along = [&](int from, int size) {
            return isHorizontal ? QRect(from, 0, size, bar->rect.height())
                                : QRect(0, from, bar->rect.width(), size);
        };
        switch (part) {
        case SC_ScrollBarSlider:
            return along(start, handle);
        case SC_ScrollBarSubPage:
            return along(0, start);
        case SC_ScrollBarAddPage:
            return along(start + handle, length - start - handle);
        case SC_ScrollBarGroove:
            return bar->rect;
        default:
            return {};
        }
    }

    void drawComplexControl(
        ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
        const QWidget* widget) const override
    {
        const auto* bar = qstyleoption_cast<const QStyleOptionSlider*>(option);
        if (control != CC_ScrollBar || !bar) {
            QProxyStyle::drawComplexControl(control, option, painter, widget);
            return;
        }
        painter->fillRect(bar->rect, bar->palette.window());
        if (bar->maximum == bar->minimum)
            return;
        const bool isHeld =
            (bar->activeSubControls & SC_ScrollBarSlider) && (bar->state & (State_Sunken | State_MouseOver));
        QColor color = Theme::current().color(ThemeColor::primaryText);
        color.setAlphaF(isHeld ? 0.5F : 0.28F);
        QRectF handle = subControlRect(CC_ScrollBar, option, SC_ScrollBarSlider, widget);
        const double inset = (extent - handleThickness) / 2.0;
        handle.adjust(inset, inset, -inset, -inset);
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        painter->setPen(Qt::NoPen);
        painter->setBrush(color);
        painter->drawRoundedRect(handle, handleThickness / 2.0, handleThickness / 2.0);
        painter->restore();
    }

private:
    static int handleLength(const QStyleOptionSlider& bar, int length)
    {
        if (bar.maximum == bar.minimum)
            return length;
        const qint64 range = qint64(bar.maximum) - bar.minimum;
        const auto exact = static_cast<int>(qint64(bar.pageStep) * length / (range + bar.pageStep));
        return std::clamp(exact, std::min(smallestHandle, length), length);
    }
};

QStyle* quietStyle()
{
    static auto* const style = new QuietScrollBarStyle;
    return style;
}

} // namespace

QuietScrollBar::QuietScrollBar(Qt::Orientation orientation, QWidget* parent)
    : QScrollBar(orientation, parent)
{
    setStyle(quietStyle());
}

} // namespace quillo
