// SPDX-License-Identifier: AGPL-3.0-or-later
#include "controls/MenuKeys.h"

#include "controls/MenuButton.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMenu>
#include <QMouseEvent>

#include <algorithm>

namespace quillo {
namespace {

bool isSidewaysKey(int key)
{
    return key == Qt::Key_Left || key == Qt::Key_Right;
}

} // namespace

MenuKeys::MenuKeys(QWidget* window)
    : QObject(window)
    , m_window(window)
{
    QApplication::instance()->installEventFilter(this);
}

bool MenuKeys::eventFilter(QObject* watched, QEvent* event)
{
    switch (event->type()) {
    case QEvent::ShortcutOverride:
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
    case QEvent::MouseButtonPress:
    case QEvent::Wheel:
    case QEvent::MouseMove:
    case QEvent::WindowDeactivate:
    case QEvent::Hide:
        break;
    default:
        return false;
    }
    if (!watched->isWidgetType())
        return false;
    auto* target = static_cast<QWidget*>(watched);
    if (target->window() != m_window && !ownerOf(target))
        return false;

    switch (event->type()) {
    case QEvent::ShortcutOverride:
        // A key that is a shortcut comes as this alone.
        if (static_cast<QKeyEvent*>(event)->key() != Qt::Key_Alt)
            m_isAltAlone = false;
        return false;
    case QEvent::KeyPress:
        return takePress(target, *static_cast<QKeyEvent*>(event));
    case QEvent::KeyRelease:
        return takeRelease(*static_cast<QKeyEvent*>(event));
    case QEvent::MouseMove:
        return takeMove(target, *static_cast<QMouseEvent*>(event));
    case QEvent::Hide:
        takeHiding(target);
        return false;
    default:
        m_isAltAlone = false;
        setUnderlined(false);
        return false;
    }
}

bool MenuKeys::takePress(QWidget* target, const QKeyEvent& event)
{
    const int key = event.key();
    if (key == Qt::Key_Alt) {
        m_isAltAlone = !event.isAutoRepeat() && !(event.modifiers() & ~Qt::AltModifier);
        if (m_isAltAlone && !QApplication::activePopupWidget())
            setUnderlined(true);
        return false;
    }
    m_isAltAlone = false;
    if (event.modifiers() & ~Qt::KeypadModifier)
        return false;
    if (MenuButton* owner = ownerOf(target)) {
        const QAction* active = owner->menu()->activeAction();
        // Right opens a menu within the menu.
        if (!isSidewaysKey(key) || (key == Qt::Key_Right && active && active->menu()))
            return false;
        switchMenu(owner, neighbour(owner, key == Qt::Key_Right), true);
        return true;
    }
    if (key == Qt::Key_F10) {
        enter();
        return true;
    }
    auto* button = qobject_cast<MenuButton*>(target);
    if (!button)
        return false;
    switch (key) {
    case Qt::Key_Left:
    case Qt::Key_Right:
        neighbour(button, key == Qt::Key_Right)->setFocus(Qt::MenuBarFocusReason);
        return true;
    case Qt::Key_Down:
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Space:
        button->openMenu(true);
        return true;
    case Qt::Key_Escape:
        leave();
        return true;
    default:
        return false;
    }
}

bool MenuKeys::takeRelease(const QKeyEvent& event)
{
    if (event.key() != Qt::Key_Alt || event.isAutoRepeat())
        return false;
    setUnderlined(false);
    if (!m_isAltAlone)
        return false;
    m_isAltAlone = false;
    if (QApplication::activePopupWidget())
        return false;
    if (qobject_cast<MenuButton*>(QApplication::focusWidget()) && m_before)
        leave();
    else
        enter();
    return true;
}

bool MenuKeys::takeMove(QWidget* target, const QMouseEvent& event)
{
    MenuButton* owner = ownerOf(target);
    if (!owner || !owner->menu()->isVisible())
        return false;
    for (MenuButton* button : buttons()) {
        const QRect place(button->mapToGlobal(QPoint()), button->size());
        if (button != owner && place.contains(event.globalPosition().toPoint())) {
            switchMenu(owner, button, false);
            return true;
        }
    }
    return false;
}

void MenuKeys::takeHiding(QWidget* target)
{
    if (ownerOf(target) && !m_isSwitching)
        leave();
}

std::vector<MenuButton*> MenuKeys::buttons() const
{
    std::vector<MenuButton*> result;
    for (MenuButton* button : m_window->findChildren<MenuButton*>()) {
        if (button->isVisible() && button->isEnabled())
            result.push_back(button);
    }
    const bool isRightToLeft = m_window->layoutDirection() == Qt::RightToLeft;
    const auto place = [&](const MenuButton* button) {
        const QPoint point = button->mapTo(m_window, QPoint());
        return std::pair(point.y(), isRightToLeft ? -point.x() : point.x());
    };
    std::sort(result.begin(), result.end(), [&](const MenuButton* one, const MenuButton* other) {
        return place(one) < place(other);
    });
    return result;
}

MenuButton* MenuKeys::ownerOf(QWidget* target) const
{
    auto* menu = qobject_cast<QMenu*>(target);
    auto* button = menu ? qobject_cast<MenuButton*>(menu->parentWidget()) : nullptr;
    return button && button->window() == m_window ? button : nullptr;
}

MenuButton* MenuKeys::neighbour(MenuButton* button, bool toTheRight) const
{
    const auto all = buttons();
    const auto place = std::find(all.begin(), all.end(), button);
    if (place == all.end())
        return button;
    const bool forward = toTheRight == (m_window->layoutDirection() == Qt::LeftToRight);
    const auto count = all.size();
    const auto index = static_cast<std::size_t>(place - all.begin());
    return all[(index + (forward ? 1 : count - 1)) % count];
}

void MenuKeys::switchMenu(MenuButton* from, MenuButton* to, bool fromKeyboard)
{
    if (from == to)
        return;
    m_isSwitching = true;
    from->menu()->hide();
    m_isSwitching = false;
    to->openMenu(fromKeyboard);
}

void MenuKeys::enter()
{
    const auto all = buttons();
    if (all.empty())
        return;
    if (!qobject_cast<MenuButton*>(QApplication::focusWidget()))
        m_before = QApplication::focusWidget();
    all.front()->setFocus(Qt::MenuBarFocusReason);
}

void MenuKeys::leave()
{
    if (QWidget* before = m_before)
        before->setFocus(Qt::MenuBarFocusReason);
    m_before = nullptr;
}

void MenuKeys::setUnderlined(bool underlined)
{
    for (MenuButton* button : buttons())
        button->setUnderlined(underlined);
}

} // namespace quillo
