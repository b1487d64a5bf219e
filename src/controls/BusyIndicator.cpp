// SPDX-License-Identifier: AGPL-3.0-or-later
#include "controls/BusyIndicator.h"

#include "platform/Theme.h"

#include <QPainter>
#include <QTimerEvent>

namespace quillo {
namespace {

constexpr int stepMilliseconds = 40;
constexpr int stepsPerTurn = 24;
constexpr int sixteenthsOfDegree = 16;

} // namespace

BusyIndicator::BusyIndicator(int side, QWidget* parent)
    : QWidget(parent)
{
    setFixedSize(side, side);
    setAccessibleName(tr("Working"));
    setAttribute(Qt::WA_TransparentForMouseEvents);
}

void BusyIndicator::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    m_timer.start(stepMilliseconds, this);
}

void BusyIndicator::hideEvent(QHideEvent* event)
{
    QWidget::hideEvent(event);
    m_timer.stop();
}

void BusyIndicator::timerEvent(QTimerEvent* event)
{
    if (event->timerId() != m_timer.timerId()) {
        QWidget::timerEvent(event);
        return;
    }
    m_step = (m_step + 1) % stepsPerTurn;
    update();
}

void BusyIndicator::paintEvent(QPaintEvent*)
{
    const Theme& theme = Theme::current();
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const double stroke = width() / 9.0;
    const QRectF circle = QRectF(rect()).adjusted(stroke, stroke, -stroke, -stroke);
    painter.setPen(QPen(theme.color(ThemeColor::separator), stroke));
    painter.drawEllipse(circle);
    painter.setPen(QPen(theme.color(ThemeColor::accent), stroke, Qt::SolidLine, Qt::RoundCap));
    painter.drawArc(circle, -m_step * 360 * sixteenthsOfDegree / stepsPerTurn, 90 * sixteenthsOfDegree);
}

} // namespace quillo
