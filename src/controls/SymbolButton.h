// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "platform/Theme.h"

#include <QAbstractButton>
#include <QStringView>

namespace quillo {

/// A plain button that shows a symbol; its name is its tool tip and what a screen reader says. Reached with
/// Tab, pressed with Space, like every button.
class SymbolButton : public QAbstractButton
{
    Q_OBJECT

public:
    static constexpr int side = 28;

    /// The symbol's name must outlive the button.
    SymbolButton(QStringView symbol, const QString& name, QWidget* parent = nullptr);

    /// The primary text colour unless set otherwise; the secondary one while disabled, whatever is set.
    void setColor(ThemeColor color);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    const QStringView m_symbol;
    ThemeColor m_color = ThemeColor::primaryText;
};

} // namespace quillo
