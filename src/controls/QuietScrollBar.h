// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <QScrollBar>

namespace quillo {

/// A slim scroll bar: a rounded handle on whatever colour its surroundings have, without arrows.
class QuietScrollBar : public QScrollBar
{
    Q_OBJECT

public:
    explicit QuietScrollBar(Qt::Orientation orientation, QWidget* parent = nullptr);
};

} // namespace quillo
