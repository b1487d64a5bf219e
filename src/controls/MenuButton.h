// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <QAbstractButton>

class QMenu;

namespace quillo {

/// A borderless button with a text that opens a menu. Alt with the marked letter of its title opens it, too;
/// MenuKeys does the rest of what the keyboard does in a menu bar.
class MenuButton : public QAbstractButton
{
    Q_OBJECT

public:
    /// The letter after an ampersand in the title opens the menu together with Alt. The button takes the
    /// menu.
    MenuButton(const QString& title, QMenu* menu, QWidget* parent = nullptr);

    QMenu* menu() const { return m_menu; }

    /// Opens the menu below the button; from the keyboard with its first item selected.
    void openMenu(bool fromKeyboard);

    /// Whether the letter that opens the menu is underlined.
    void setUnderlined(bool underlined);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    QMenu* const m_menu;
    /// With the ampersand.
    const QString m_title;
    bool m_isUnderlined = false;
};

} // namespace quillo
