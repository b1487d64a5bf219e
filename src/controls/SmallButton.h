// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "platform/Theme.h"

#include <QAbstractButton>
#include <QStringView>

namespace quillo {

/// A borderless button with a symbol and a small text in the accent colour.
class SmallButton : public QAbstractButton
{
    Q_OBJECT

public:
    /// The symbol's name must outlive the button.
    SmallButton(QStringView symbol, const QString& title, TextStyle style, QWidget* parent = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    int symbolSide() const;

    const QStringView m_symbol;
};

} // namespace quillo
