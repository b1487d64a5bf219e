// SPDX-License-Identifier: AGPL-3.0-or-later
#include "controls/LatePane.h"

namespace quillo {

void LatePane::fill()
{
    if (m_isFilled)
        return;
    m_isFilled = true;
    makeContent();
}

void LatePane::paintEvent(QPaintEvent* event)
{
    QWidget::paintEvent(event);
    if (!m_isPainted) {
        m_isPainted = true;
        // By then the frame that is being painted has been handed to the screen.
        QMetaObject::invokeMethod(this, &LatePane::fill, Qt::QueuedConnection);
    }
}

} // namespace quillo
