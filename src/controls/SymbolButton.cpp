// SPDX-License-Identifier: AGPL-3.0-or-later
#include "controls/SymbolButton.h"

#include "controls/ControlPainting.h"
#include "platform/Symbols.h"

#include <QEvent>
#include <QPainter>

namespace quillo {
namespace {

constexpr int symbolSide = 18;

} // namespace

SymbolButton::SymbolButton(QStringView symbol, const QString& name, QWidget* parent)
    : QAbstractButton(parent)
    , m_symbol(symbol)
{
    setAccessibleName(name);
    setToolTip(name);
    setAttribute(Qt::WA_Hover);
    setFocusPolicy(Qt::TabFocus);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void SymbolButton::setColor(ThemeColor color)
{
    m_color = color;
    update();
}

QSize SymbolButton::sizeHint() const
{
    return {side, side};
}

bool SymbolButton::event(QEvent* event)
{
    if (event->type() == QEvent::HoverEnter || event->type() == QEvent::HoverLeave)
        update();
    return QAbstractButton::event(event);
}

void SymbolButton::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    paintBorderlessButton(painter, *this);
    const int inset = (side - symbolSide) / 2;
    if (!isEnabled())
        painter.setOpacity(0.45);
    painter.drawPixmap(
        inset, inset,
        Symbols::pixmap(
            m_symbol, symbolSide, Theme::current().color(isEnabled() ? m_color : ThemeColor::secondaryText),
            devicePixelRatioF()));
}

} // namespace quillo
