// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "platform/Theme.h"

#include <QStringView>
#include <QWidget>

namespace quillo {

/// A symbol on its own, in a colour of the theme. It says nothing to a screen reader: the text beside it
/// does.
class SymbolView : public QWidget
{
    Q_OBJECT

public:
    /// The name must outlive the view; the side is in device-independent pixels.
    SymbolView(QStringView symbol, int side, ThemeColor color, QWidget* parent = nullptr);

    QStringView symbol() const { return m_symbol; }
    void setSymbol(QStringView symbol);
    void setColor(ThemeColor color);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QStringView m_symbol;
    ThemeColor m_color;
};

} // namespace quillo
