// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <QAbstractButton>

class QMenu;

namespace quillo {

/// A borderless button with a text that opens a menu.
class MenuButton : public QAbstractButton
{
    Q_OBJECT

public:
    /// The button takes the menu.
    MenuButton(const QString& title, QMenu* menu, QWidget* parent = nullptr);

    QMenu* menu() const { return m_menu; }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void openMenu();

    QMenu* const m_menu;
};

} // namespace quillo
