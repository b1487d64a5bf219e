// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <QWidget>

namespace quillo {

/// A line one device pixel wide between two parts of a window.
class Separator : public QWidget
{
    Q_OBJECT

public:
    explicit Separator(Qt::Orientation orientation, QWidget* parent = nullptr);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    const Qt::Orientation m_orientation;
};

} // namespace quillo
