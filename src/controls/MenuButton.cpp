// SPDX-License-Identifier: AGPL-3.0-or-later
#include "controls/MenuButton.h"

#include "controls/ControlPainting.h"

#include <QEvent>
#include <QMenu>
#include <QPainter>

namespace quillo {
namespace {

constexpr int paddingAcross = 8;
constexpr int buttonHeight = 28;

} // namespace

MenuButton::MenuButton(const QString& title, QMenu* menu, QWidget* parent)
    : QAbstractButton(parent)
    , m_menu(menu)
{
    m_menu->setParent(this, m_menu->windowFlags());
    setText(title);
    setAccessibleName(title);
    setFont(Theme::font(TextStyle::subheadline));
    setAttribute(Qt::WA_Hover);
    setFocusPolicy(Qt::TabFocus);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    // Menus open on the press, so that the pointer can be dragged to an item.
    connect(this, &QAbstractButton::pressed, this, &MenuButton::openMenu);
}

QSize MenuButton::sizeHint() const
{
    return {fontMetrics().horizontalAdvance(text()) + 2 * paddingAcross, buttonHeight};
}

void MenuButton::openMenu()
{
    m_menu->exec(mapToGlobal(QPoint(0, height())));
    setDown(false);
}

bool MenuButton::event(QEvent* event)
{
    if (event->type() == QEvent::HoverEnter || event->type() == QEvent::HoverLeave)
        update();
    return QAbstractButton::event(event);
}

void MenuButton::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    paintBorderlessButton(painter, *this);
    painter.setPen(Theme::current().color(ThemeColor::primaryText));
    painter.drawText(rect(), Qt::AlignCenter, text());
}

} // namespace quillo
