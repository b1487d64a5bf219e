// SPDX-License-Identifier: AGPL-3.0-or-later
#include "view/Scrolling.h"

#include "pdfview/PDFView.h"
#include "support/Race.h"
#include "view/MainThreadWatch.h"

#include <QEventLoop>
#include <QFile>
#include <QScrollBar>
#include <QTextStream>
#include <QTimer>

#include <algorithm>
#include <chrono>
#include <unistd.h>

namespace quillo::benchmark {
namespace {

constexpr std::chrono::milliseconds frame(16);
constexpr double pointsPerFrame = 140;
constexpr double slowFrame = 16;
constexpr double stall = 50;

/// What this process has in memory, in megabytes.
double memory()
{
    QFile file(QStringLiteral("/proc/self/statm"));
    if (!file.open(QFile::ReadOnly))
        return 0;
    return file.readAll().split(' ').at(1).toDouble() * static_cast<double>(::sysconf(_SC_PAGESIZE)) /
           1048576;
}

std::ptrdiff_t countAbove(const std::vector<double>& values, double limit)
{
    return std::count_if(values.begin(), values.end(), [limit](double value) { return value > limit; });
}

struct Way
{
    /// Steps at which everything visible was sharp.
    int sharp = 0;
    int steps = 0;
    /// Megabytes.
    double mostMemory = 0;
};

Way scrollToTheEnd(pdf::PDFView& view)
{
    Way way;
    QEventLoop loop;
    QTimer timer;
    timer.setTimerType(Qt::PreciseTimer);
    QObject::connect(&timer, &QTimer::timeout, &view, [&] {
        way.sharp += view.isSharp() ? 1 : 0;
        ++way.steps;
        way.mostMemory = std::max(way.mostMemory, memory());
        if (view.verticalScrollBar()->value() == view.verticalScrollBar()->maximum())
            loop.quit();
        else
            view.scrollBy({0, pointsPerFrame});
    });
    timer.start(frame);
    loop.exec();
    return way;
}

} // namespace

bool measureScrolling(const Subject& subject)
{
    const auto view = show(subject);
    if (!view)
        return false;
    auto& watch = *static_cast<MainThreadWatch*>(QCoreApplication::instance());
    watch.takeBusy();
    const double before = memory();
    const Way way = scrollToTheEnd(*view);
    const auto [frames, events] = watch.takeBusy();
    const auto print = [](double value, int decimals) { return QString::number(value, 'f', decimals); };
    QTextStream out(stdout);
    out << subject.name << ", " << subject.pageCount << " pages in " << way.steps << " steps, at "
        << print(100.0 * way.sharp / way.steps, 0) << " % of them all was sharp at once\n"
        << "    " << frames.size() << " frames, median " << print(median(frames), 2) << " ms, "
        << countAbove(frames, slowFrame) << " over 16 ms\n"
        << "    main thread busy longer than 50 ms " << countAbove(events, stall) << " times, longest "
        << print(*std::max_element(events.begin(), events.end()), 1) << " ms\n"
        << "    memory " << print(before, 0) << " MB before, " << print(way.mostMemory, 0) << " MB at most, "
        << print(memory(), 0) << " MB after\n";
    return true;
}

} // namespace quillo::benchmark
