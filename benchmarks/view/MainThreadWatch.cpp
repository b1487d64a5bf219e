// SPDX-License-Identifier: AGPL-3.0-or-later
#include "view/MainThreadWatch.h"

#include <QElapsedTimer>
#include <QEvent>

namespace quillo::benchmark {

bool MainThreadWatch::notify(QObject* receiver, QEvent* event)
{
    // Events are sent within others; the outermost holds up the rest.
    m_hasPainted |= event->type() == QEvent::Paint;
    if (m_depth > 0)
        return QApplication::notify(receiver, event);
    QElapsedTimer timer;
    timer.start();
    ++m_depth;
    const bool result = QApplication::notify(receiver, event);
    --m_depth;
    const double milliseconds = static_cast<double>(timer.nsecsElapsed()) / 1e6;
    m_busy.events.push_back(milliseconds);
    if (m_hasPainted)
        m_busy.frames.push_back(milliseconds);
    m_hasPainted = false;
    return result;
}

} // namespace quillo::benchmark
