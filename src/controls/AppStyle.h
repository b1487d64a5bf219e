// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <QProxyStyle>

namespace quillo {

/// Qt's own Fusion style on every desktop, except for hints: these have some room around their text and a
/// hairline for a frame, like the other surfaces of the program.
class AppStyle : public QProxyStyle
{
    Q_OBJECT

public:
    AppStyle();

    int pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const override;
    void drawPrimitive(
        PrimitiveElement element, const QStyleOption* option, QPainter* painter,
        const QWidget* widget) const override;
};

} // namespace quillo
