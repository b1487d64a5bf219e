// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "analytics/AnalyticsFakes.h"
#include "analytics/AnalyticsService.h"
#include "platform/DefaultsKeys.h"
#include "platform/UserDefaults.h"

#include <QTemporaryDir>

/// An analytics service with the user's consent that sends nothing, so that a test can see what is recorded.
/// After ten events the service takes them all as sent.
class RecordedAnalytics
{
public:
    RecordedAnalytics()
        : m_defaults(consentingDefaults())
        , m_service(m_defaults, m_timers, m_transport, quietEnvironment())
    {}

    quillo::AnalyticsService& service() { return m_service; }
    quillo::UserDefaults& defaults() { return m_defaults; }

    /// Every request of the session, what is still queued included.
    const std::vector<quillo::AnalyticsRequest>& sendEverything()
    {
        m_timers.advance(std::chrono::minutes(5));
        return m_transport.requests;
    }

    /// The types of the recorded events, oldest first.
    QStringList types() const
    {
        QStringList result;
        for (const auto& event : m_service.eventQueue())
            result.append(quillo::rawValue(event.eventType));
        return result;
    }

    /// A value of the latest event of the type; invalid when there is none.
    QVariant latest(quillo::EventType type, const QString& key) const
    {
        QVariant value;
        for (const auto& event : m_service.eventQueue()) {
            if (event.eventType == type)
                value = event.metadata.value(key);
        }
        return value;
    }

private:
    QString consentingDefaults() const
    {
        QString path = m_folder.filePath(QStringLiteral("Quillo.conf"));
        quillo::UserDefaults defaults(path);
        defaults.setBoolean(quillo::DefaultsKeys::analyticsEnabled, true);
        defaults.synchronize();
        return path;
    }

    static quillo::AnalyticsEnvironment quietEnvironment()
    {
        quillo::AnalyticsEnvironment environment;
        environment.printLine = [](const QString&) {};
        return environment;
    }

    QTemporaryDir m_folder;
    quillo::UserDefaults m_defaults;
    quillo::FakeTimers m_timers;
    quillo::FakeTransport m_transport;
    quillo::AnalyticsService m_service;
};
