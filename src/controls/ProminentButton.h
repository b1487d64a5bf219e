// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <QAbstractButton>

namespace quillo {

/// The button for what most people want to do next: a text on the accent colour. While it has
/// the focus, Return presses it as well as Space.
class ProminentButton : public QAbstractButton
{
    Q_OBJECT

public:
    explicit ProminentButton(const QString& title, QWidget* parent = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
};

} // namespace quillo
