// SPDX-License-Identifier: AGPL-3.0-or-later
#include "controls/MenuButton.h"

#include "controls/ControlPainting.h"

#include <QEvent>
#include <QMenu>
#include <QPainter>
#include <QShortcutEvent>

namespace quillo {
namespace {

constexpr int paddingAcross = 8;
constexpr int buttonHeight = 28;

QString withoutMnemonic(QString title)
{
    return title.remove(u'&');
}

} // namespace

MenuButton::MenuButton(const QString& title, QMenu* menu, QWidget* parent)
    : QAbstractButton(parent)
    , m_menu(menu)
    , m_title(title)
{
    m_menu->setParent(this, m_menu->windowFlags());
    // A click on the button while its menu is open closes the menu and must not open it again.
    m_menu->setAttribute(Qt::WA_NoMouseReplay);
    connect(m_menu, &QMenu::aboutToHide, this, [this] { setDown(false); });
    setText(withoutMnemonic(title));
    setAccessibleName(text());
    setShortcut(QKeySequence::mnemonic(title));
    setFont(Theme::font(TextStyle::subheadline));
    setAttribute(Qt::WA_Hover);
    setFocusPolicy(Qt::TabFocus);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    // Menus open on the press, so that the pointer can be dragged to an item.
    connect(this, &QAbstractButton::pressed, this, [this] { openMenu(false); });
}

QSize MenuButton::sizeHint() const
{
    return {fontMetrics().horizontalAdvance(text()) + 2 * paddingAcross, buttonHeight};
}

void MenuButton::openMenu(bool fromKeyboard)
{
    setDown(true);
    m_menu->popup(mapToGlobal(QPoint(0, height())));
    // What is selected stays so until an item is; items that cannot be seen or chosen are passed by.
    m_menu->setActiveAction(nullptr);
    if (fromKeyboard) {
        for (QAction* action : m_menu->actions()) {
            if (action->isVisible() && action->isEnabled() && !action->isSeparator()) {
                m_menu->setActiveAction(action);
                break;
            }
        }
    }
}

void MenuButton::setUnderlined(bool underlined)
{
    m_isUnderlined = underlined;
    update();
}

bool MenuButton::event(QEvent* event)
{
    if (event->type() == QEvent::HoverEnter || event->type() == QEvent::HoverLeave)
        update();
    if (event->type() == QEvent::Shortcut && !static_cast<QShortcutEvent*>(event)->isAmbiguous()) {
        openMenu(true);
        return true;
    }
    return QAbstractButton::event(event);
}

void MenuButton::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    paintBorderlessButton(painter, *this);
    painter.setPen(Theme::current().color(ThemeColor::primaryText));
    painter.drawText(
        rect(), Qt::AlignCenter | (m_isUnderlined ? Qt::TextShowMnemonic : Qt::TextHideMnemonic), m_title);
}

} // namespace quillo
