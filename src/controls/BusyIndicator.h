// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <QBasicTimer>
#include <QWidget>

namespace quillo {

/// A turning arc that says that something runs. It turns only while it is visible.
class BusyIndicator : public QWidget
{
    Q_OBJECT

public:
    /// The side is in device-independent pixels.
    explicit BusyIndicator(int side, QWidget* parent = nullptr);

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void timerEvent(QTimerEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    QBasicTimer m_timer;
    int m_step = 0;
};

} // namespace quillo
