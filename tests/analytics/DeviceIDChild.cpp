// SPDX-License-Identifier: AGPL-3.0-or-later
#include "analytics/AnalyticsFakes.h"
#include "analytics/AnalyticsService.h"
#include "platform/Console.h"
#include "platform/UserDefaults.h"
#include "support/StartSignal.h"

#include <QCoreApplication>

// A program that starts as Quillo does and names its device:
//   analytics_device_child PATH
int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    const quillo::StartSignal start;
    start.wait();
    quillo::UserDefaults defaults(QCoreApplication::arguments().at(1));
    quillo::FakeTimers timers;
    quillo::FakeTransport transport;
    const quillo::AnalyticsService service(defaults, timers, transport);
    quillo::printLine(service.deviceID());
    return 0;
}
