// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdfview/Waker.h"

#include <QCoreApplication>
#include <QEvent>

#include <utility>

namespace pdf {

Waker::Waker(std::function<void()> wakeUp)
    : m_wakeUp(std::move(wakeUp))
{}

void Waker::wake()
{
    QCoreApplication::postEvent(this, new QEvent(QEvent::User));
}

void Waker::customEvent(QEvent*)
{
    m_wakeUp();
}

} // namespace pdf
