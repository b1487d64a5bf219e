// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "analytics/EventQueue.h"
#include "analytics/EventType.h"
#include "json/PointInTime.h"

#include <QByteArray>
#include <QObject>
#include <QString>
#include <QVariantMap>

#include <chrono>
#include <functional>
#include <future>
#include <memory>
#include <optional>
#include <vector>

namespace quillo {

class AnalyticsTimers;
class AnalyticsTransport;
class UserDefaults;

/// What the analytics service asks of its host. The defaults are this machine's and this program's own.
struct AnalyticsEnvironment
{
    AnalyticsEnvironment();

    std::function<PointInTime()> now;
    std::function<std::optional<QString>(QStringView key)> bundleValue;
    std::function<QString()> operatingSystemVersion;
    std::function<QString()> deviceModel;
    std::function<QString()> screenResolution;
    std::function<qint64()> availableMemory;
    std::function<void(const QString& line)> printLine;
    /// Absent when it fails.
    std::function<std::optional<QByteArray>(const QByteArray& bytes)> compress;
    QString serverEndpoint;
    std::chrono::milliseconds requestTimeout;
};

/// The opt-in client for usage events: it adds facts about the program and the machine to what is tracked,
/// queues it in memory, and uploads the queue with the tenth event, 300 seconds after each event, and when
/// the program ends. An upload that fails puts its events back at the end of the queue.
///
/// The user's consent is read from the defaults when the service is made and at no other time; a consent
/// toggle that writes "analyticsEnabled" to the defaults takes effect at the next launch. Main thread only.
class AnalyticsService : public QObject
{
    Q_OBJECT

public:
    /// Defaults, timers and transport must outlive the service.
    AnalyticsService(
        UserDefaults& defaults, AnalyticsTimers& timers, AnalyticsTransport& transport,
        AnalyticsEnvironment environment = {}, QObject* parent = nullptr);

    /// The process-wide service over the standard defaults and the network; never destroyed. Needs an
    /// application object.
    static AnalyticsService& shared();

    bool analyticsEnabled() const { return m_analyticsEnabled; }
    /// Written to the defaults at once. Turning it off keeps what is queued until it is turned on again.
    void setAnalyticsEnabled(bool enabled);

    /// The installation's identifier, upper-case UUID text, the same in all processes. In the first moments
    /// of the first launch this waits until it has been agreed upon; with analytics off nobody asks for it.
    const QString& deviceID() const { return m_deviceID.get(); }
    /// What has not been uploaded yet, oldest first.
    std::vector<AnalyticsEvent> eventQueue() const { return m_queue->events(); }
    const QString& serverEndpoint() const { return m_environment.serverEndpoint; }

    /// Starts the session and its heartbeat and tracks the launch. Cheap: nothing of the network is touched.
    void initialize();

    /// Queues an event, or drops it while analytics is off. Metadata must consist of values that JSON can
    /// hold: one that cannot be encoded blocks every later upload.
    void trackEvent(EventType type, const QVariantMap& metadata = {});

    /// Ends the session when the program is about to end: stops the heartbeat, tracks the end and sends what
    /// is queued. With nothing to send, or with analytics off, it returns at once; otherwise it deliberately
    /// never does, and the process waits, its request on the way, until the system ends it. The default
    /// action of SIGTERM does so at once, hence no handler for it may be in place by then.
    void flush();

Q_SIGNALS:
    void analyticsEnabledChanged(bool enabled);

private:
    QVariantMap enrichMetadata(const QVariantMap& metadata) const;
    double sessionDuration() const;
    void startHeartbeat();
    void sendBatch(bool sync);

    UserDefaults& m_defaults;
    AnalyticsTimers& m_timers;
    AnalyticsTransport& m_transport;
    const AnalyticsEnvironment m_environment;
    bool m_analyticsEnabled;
    const std::shared_future<QString> m_deviceID;
    /// Shared with nobody, but watched by the completion of a request, which may outlast the service.
    const std::shared_ptr<EventQueue> m_queue = std::make_shared<EventQueue>();
    std::optional<PointInTime> m_sessionStart;
    /// The context of the heartbeat's timer, which goes with it.
    std::unique_ptr<QObject> m_heartbeat;
};

} // namespace quillo
