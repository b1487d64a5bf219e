// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <QWidget>

namespace quillo {

/// The mascot and the product's name in its three colours.
class BrandMark : public QWidget
{
    Q_OBJECT

public:
    explicit BrandMark(QWidget* parent = nullptr);

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
};

} // namespace quillo
