// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <QBasicTimer>
#include <QElapsedTimer>
#include <QObject>
#include <QPointF>

namespace pdf {

/// Spreads scrolling over the next frames: quick at first, then coming to rest. Further distances add to what
/// is still to go. Distances are in whatever unit the user of the class chooses.
class ScrollAnimation : public QObject
{
    Q_OBJECT

public:
    explicit ScrollAnimation(QObject* parent);

    void add(QPointF distance);
    void stop();
    /// Covers a distance at once, instead of what is still to go.
    void jump(QPointF distance);
    bool isRunning() const { return m_timer.isActive(); }

    /// What part of the way is left after a time without any addition.
    static double partLeft(double milliseconds);

Q_SIGNALS:
    /// A part of the distance in whole units.
    void moved(QPoint distance);
    /// The whole way is covered; not when it was stopped before.
    void cameToRest();

protected:
    void timerEvent(QTimerEvent* event) override;

private:
    QBasicTimer m_timer;
    QElapsedTimer m_clock;
    QPointF m_remaining;
    /// What was not moved yet because it is less than a unit.
    QPointF m_fraction;
};

} // namespace pdf
