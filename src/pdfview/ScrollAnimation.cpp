// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdfview/ScrollAnimation.h"

#include <QTimerEvent>

#include <cmath>

namespace pdf {
namespace {

constexpr int frameMilliseconds = 8;
// The way to go shrinks to a third in this time.
constexpr double slownessMilliseconds = 45.0;
constexpr double restDistance = 0.5;

} // namespace

ScrollAnimation::ScrollAnimation(QObject* parent)
    : QObject(parent)
{}

void ScrollAnimation::add(QPointF distance)
{
    m_remaining += distance;
    if (!m_timer.isActive()) {
        m_clock.start();
        m_timer.start(frameMilliseconds, Qt::PreciseTimer, this);
    }
}

void ScrollAnimation::stop()
{
    m_timer.stop();
    m_remaining = {};
    m_fraction = {};
}

void ScrollAnimation::jump(QPointF distance)
{
    stop();
    Q_EMIT moved(distance.toPoint());
}

double ScrollAnimation::partLeft(double milliseconds)
{
    return std::exp(-milliseconds / slownessMilliseconds);
}

void ScrollAnimation::timerEvent(QTimerEvent* event)
{
    if (event->timerId() != m_timer.timerId()) {
        QObject::timerEvent(event);
        return;
    }
    const double left = partLeft(static_cast<double>(m_clock.nsecsElapsed()) / 1e6);
    m_clock.start();
    QPointF next = m_remaining * left;
    const bool isAtRest = next.manhattanLength() < restDistance;
    if (isAtRest)
        next = {};
    const QPointF way = m_remaining - next + m_fraction;
    m_remaining = next;
    const QPoint step =
        isAtRest ? way.toPoint()
                 : QPoint(static_cast<int>(std::trunc(way.x())), static_cast<int>(std::trunc(way.y())));
    m_fraction = way - step;
    if (isAtRest)
        stop();
    if (!step.isNull())
        Q_EMIT moved(step);
    if (isAtRest)
        Q_EMIT cameToRest();
}

} // namespace pdf
