// SPDX-License-Identifier: AGPL-3.0-or-later
#include "analytics/AnalyticsService.h"
#include "platform/Console.h"

#include <QGuiApplication>
#include <QSslConfiguration>
#include <QTimer>

// A program that ends as Quillo does: it tracks events, leaves its event loop and flushes the process-wide
// analytics service.
//   analytics_flush_child AUTHORITY on|off EVENTS
// The endpoint and the place of the store come from the environment.
int main(int argc, char** argv)
{
    const QGuiApplication application(argc, argv);
    const QStringList arguments = QGuiApplication::arguments();
    QSslConfiguration configuration = QSslConfiguration::defaultConfiguration();
    configuration.addCaCertificates(arguments.at(1));
    QSslConfiguration::setDefaultConfiguration(configuration);

    quillo::AnalyticsService& service = quillo::AnalyticsService::shared();
    service.setAnalyticsEnabled(arguments.at(2) == QStringLiteral("on"));
    const int events = arguments.at(3).toInt();
    if (events > 0)
        service.initialize();
    for (int i = 1; i < events; ++i)
        service.trackEvent(quillo::EventType::zoom, {{QStringLiteral("n"), i}});
    QObject::connect(&application, &QGuiApplication::aboutToQuit, &service, &quillo::AnalyticsService::flush);
    QTimer::singleShot(0, &application, &QGuiApplication::quit);
    const int status = QGuiApplication::exec();
    quillo::printLine(QStringLiteral("The child is back."));
    return status;
}
