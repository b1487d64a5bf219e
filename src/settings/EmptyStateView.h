// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <QWidget>

namespace quillo {

/// What a window shows while no document is open.
class EmptyStateView : public QWidget
{
    Q_OBJECT

public:
    explicit EmptyStateView(QWidget* parent = nullptr);

Q_SIGNALS:
    void openDocumentRequested();
};

} // namespace quillo
