// SPDX-License-Identifier: AGPL-3.0-or-later
#include "controls/SymbolView.h"

#include "platform/Symbols.h"

#include <QPainter>

namespace quillo {

SymbolView::SymbolView(QStringView symbol, int side, ThemeColor color, QWidget* parent)
    : QWidget(parent)
    , m_symbol(symbol)
    , m_color(color)
{
    setFixedSize(side, side);
    setAttribute(Qt::WA_TransparentForMouseEvents);
}

void SymbolView::setSymbol(QStringView symbol)
{
    m_symbol = symbol;
    update();
}

void SymbolView::setColor(ThemeColor color)
{
    m_color = color;
    update();
}

void SymbolView::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.drawPixmap(
        0, 0, Symbols::pixmap(m_symbol, width(), Theme::current().color(m_color), devicePixelRatioF()));
}

} // namespace quillo
