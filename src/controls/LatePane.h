// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <QWidget>

namespace quillo {

/// A part of a window that is empty in the window's first frame and is filled right after it. Whatever shows
/// text needs the system's fonts, and looking those up would make the first page wait. The pane's size must
/// not depend on what it is filled with.
class LatePane : public QWidget
{
    Q_OBJECT

public:
    using QWidget::QWidget;

    /// Fills the pane now, unless that has been done.
    void fill();
    bool isFilled() const { return m_isFilled; }

protected:
    /// Makes the content; called once.
    virtual void makeContent() = 0;

    void paintEvent(QPaintEvent* event) override;

private:
    bool m_isFilled = false;
    bool m_isPainted = false;
};

} // namespace quillo
