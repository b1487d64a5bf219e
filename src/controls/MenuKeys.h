// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <QObject>
#include <QPointer>

#include <vector>

class QKeyEvent;
class QMouseEvent;
class QWidget;

namespace quillo {

class MenuButton;

/// Makes the menu buttons of a window what the titles of a menu bar are, wherever in the window they stand:
/// Alt alone and F10 give them the keyboard, Left and Right go from one to the next whether their menus are
/// open or not, Down opens, Escape returns the keyboard to where it was. With the mouse, an open menu follows
/// the pointer to another button. Main thread.
class MenuKeys : public QObject
{
    Q_OBJECT

public:
    /// Lives as long as the window.
    explicit MenuKeys(QWidget* window);

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    bool takePress(QWidget* target, const QKeyEvent& event);
    bool takeRelease(const QKeyEvent& event);
    bool takeMove(QWidget* target, const QMouseEvent& event);
    void takeHiding(QWidget* target);

    /// From left to right or as the language reads, row by row.
    std::vector<MenuButton*> buttons() const;
    /// The button whose menu this is, or null.
    MenuButton* ownerOf(QWidget* target) const;
    MenuButton* neighbour(MenuButton* button, bool toTheRight) const;
    void switchMenu(MenuButton* from, MenuButton* to, bool fromKeyboard);
    void enter();
    void leave();
    void setUnderlined(bool underlined);

    QWidget* const m_window;
    /// Alt is down and nothing else has been pressed since.
    bool m_isAltAlone = false;
    bool m_isSwitching = false;
    /// What had the keyboard before the buttons got it.
    QPointer<QWidget> m_before;
};

} // namespace quillo
