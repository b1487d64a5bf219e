// SPDX-License-Identifier: AGPL-3.0-or-later
#include "controls/SmallButton.h"

#include "controls/ControlPainting.h"
#include "platform/Symbols.h"

#include <QEvent>
#include <QPainter>

namespace quillo {
namespace {

constexpr int paddingAcross = 8;
constexpr int paddingAlong = 4;
constexpr int gap = 4;

} // namespace

SmallButton::SmallButton(QStringView symbol, const QString& title, TextStyle style, QWidget* parent)
    : QAbstractButton(parent)
    , m_symbol(symbol)
{
    setText(title);
    setAccessibleName(title);
    setFont(Theme::font(style));
    setAttribute(Qt::WA_Hover);
    setFocusPolicy(Qt::TabFocus);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

int SmallButton::symbolSide() const
{
    return fontMetrics().ascent() + 2;
}

QSize SmallButton::sizeHint() const
{
    const int text = fontMetrics().horizontalAdvance(this->text());
    return {
        2 * paddingAcross + symbolSide() + gap + text,
        std::max(fontMetrics().height(), symbolSide()) + 2 * paddingAlong};
}

bool SmallButton::event(QEvent* event)
{
    if (event->type() == QEvent::HoverEnter || event->type() == QEvent::HoverLeave)
        update();
    return QAbstractButton::event(event);
}

void SmallButton::paintEvent(QPaintEvent*)
{
    const Theme& theme = Theme::current();
    const QColor color = theme.color(isEnabled() ? ThemeColor::accent : ThemeColor::secondaryText);
    QPainter painter(this);
    paintBorderlessButton(painter, *this);
    const int side = symbolSide();
    painter.drawPixmap(
        paddingAcross, (height() - side) / 2, Symbols::pixmap(m_symbol, side, color, devicePixelRatioF()));
    painter.setPen(color);
    painter.drawText(
        rect().adjusted(paddingAcross + side + gap, 0, 0, 0), Qt::AlignVCenter | Qt::AlignLeft, text());
}

} // namespace quillo
