// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <QObject>

#include <functional>

namespace pdf {

/// Has something done on the thread that it lives on when another thread asks for it. Nothing travels from
/// one thread to the other along with that: what there is to do lies under a lock of the asker's own, which
/// the thread sanitizer sees, as it does not see those inside Qt.
class Waker : public QObject
{
public:
    explicit Waker(std::function<void()> wakeUp);

    /// From any thread: calls the function a little later. It is called as often as it was asked for, and not
    /// any more when this object is gone.
    void wake();

protected:
    void customEvent(QEvent* event) override;

private:
    const std::function<void()> m_wakeUp;
};

} // namespace pdf
