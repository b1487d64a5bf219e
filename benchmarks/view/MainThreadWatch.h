// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <QApplication>

#include <vector>

namespace quillo::benchmark {

/// An application that notes how long the main thread is busy with each event; until it has dealt with one it
/// can neither paint nor take input.
class MainThreadWatch : public QApplication
{
public:
    using QApplication::QApplication;

    /// Milliseconds of the events since the last call, of those in which something was painted and of all.
    struct Busy
    {
        std::vector<double> frames;
        std::vector<double> events;
    };
    Busy takeBusy() { return std::exchange(m_busy, {}); }

    bool notify(QObject* receiver, QEvent* event) override;

private:
    int m_depth = 0;
    bool m_hasPainted = false;
    Busy m_busy;
};

} // namespace quillo::benchmark
