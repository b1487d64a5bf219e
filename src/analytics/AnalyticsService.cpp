// SPDX-License-Identifier: AGPL-3.0-or-later
#include "analytics/AnalyticsService.h"

#include "analytics/AnalyticsJson.h"
#include "analytics/AnalyticsTimers.h"
#include "analytics/AnalyticsTransport.h"
#include "analytics/Deflate.h"
#include "analytics/NetworkModule.h"
#include "platform/BundleInfo.h"
#include "platform/Console.h"
#include "platform/DefaultsKeys.h"
#include "platform/SystemInfo.h"
#include "platform/UserDefaults.h"
#include "platform/WebAddresses.h"

#include <QUuid>

#include <semaphore>
#include <utility>

namespace quillo {
namespace {

constexpr std::size_t queueThreshold = 10;
constexpr std::chrono::seconds delayOfSend{300};
constexpr std::chrono::seconds heartbeatInterval{300};
constexpr std::chrono::seconds usualRequestTimeout{60};
constexpr int statusOfSuccess = 200;

// The body is a bare DEFLATE stream all the same; the collection server knows.
constexpr std::pair<const char*, const char*> requestHeaders[] = {
    {"Content-Type", "application/json"},
    {"Content-Encoding", "gzip"},
};

QString makeIdentifier()
{
    return QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper();
}

// Runs on the transport's thread; the queue has a lock of its own.
void complete(
    const AnalyticsResponse& response, const std::vector<AnalyticsEvent>& events,
    const std::weak_ptr<EventQueue>& queue, const std::function<void(const QString&)>& printLine)
{
    if (response.error)
        printLine(QStringLiteral("Analytics send failed: %1").arg(*response.error));
    else if (response.httpStatus && *response.httpStatus != statusOfSuccess)
        printLine(QStringLiteral("Analytics server returned status: %1").arg(*response.httpStatus));
    else
        return;
    if (const auto existing = queue.lock())
        existing->putBack(events);
}

} // namespace

AnalyticsEnvironment::AnalyticsEnvironment()
    : now(PointInTime::now)
    , bundleValue(BundleInfo::informationValue)
    , operatingSystemVersion(SystemInfo::operatingSystemVersion)
    , deviceModel([] { return SystemInfo::deviceModel(); })
    , screenResolution([] { return SystemInfo::screenResolution(); })
    , availableMemory([] { return SystemInfo::availableMemory(); })
    , printLine(quillo::printLine)
    , compress(deflated)
    , serverEndpoint(WebAddresses::collectionEndpoint())
    , requestTimeout(usualRequestTimeout)
{}

AnalyticsService::AnalyticsService(
    UserDefaults& defaults, AnalyticsTimers& timers, AnalyticsTransport& transport,
    AnalyticsEnvironment environment, QObject* parent)
    : QObject(parent)
    , m_defaults(defaults)
    , m_timers(timers)
    , m_transport(transport)
    , m_environment(std::move(environment))
    , m_analyticsEnabled(defaults.boolean(DefaultsKeys::analyticsEnabled).value_or(false))
    , m_deviceID(defaults.agreedString(DefaultsKeys::deviceID, makeIdentifier()))
{}

AnalyticsService& AnalyticsService::shared()
{
    static auto* const service =
        new AnalyticsService(UserDefaults::standard(), *new EventLoopTimers, NetworkModule::shared());
    return *service;
}

void AnalyticsService::setAnalyticsEnabled(bool enabled)
{
    const bool changed = enabled != m_analyticsEnabled;
    m_analyticsEnabled = enabled;
    m_defaults.setBoolean(DefaultsKeys::analyticsEnabled, enabled);
    if (changed)
        Q_EMIT analyticsEnabledChanged(enabled);
}

void AnalyticsService::initialize()
{
    m_sessionStart = m_environment.now();
    startHeartbeat();
    const bool launchedBefore = m_defaults.boolean(DefaultsKeys::hasLaunchedBefore).value_or(false);
    trackEvent(
        EventType::appLaunch,
        {{QStringLiteral("sessionID"), makeIdentifier()}, {QStringLiteral("firstLaunch"), !launchedBefore}});
    m_defaults.setBoolean(DefaultsKeys::hasLaunchedBefore, true);
}

void AnalyticsService::trackEvent(EventType type, const QVariantMap& metadata)
{
    if (!m_analyticsEnabled)
        return;
    const std::size_t before =
        m_queue->append({deviceID(), type, enrichMetadata(metadata), m_environment.now()});
    if (before + 1 >= queueThreshold)
        sendBatch(false);
    m_timers.after(delayOfSend, this, [this] { sendBatch(false); });
}

void AnalyticsService::flush()
{
    m_heartbeat.reset();
    if (m_sessionStart)
        trackEvent(EventType::appTerminate, {{QStringLiteral("totalSessionDuration"), sessionDuration()}});
    sendBatch(true);
}

QVariantMap AnalyticsService::enrichMetadata(const QVariantMap& metadata) const
{
    const QString unknown = QStringLiteral("unknown");
    QVariantMap enriched = metadata;
    enriched[QStringLiteral("appVersion")] =
        m_environment.bundleValue(u"CFBundleShortVersionString").value_or(unknown);
    enriched[QStringLiteral("buildNumber")] = m_environment.bundleValue(u"CFBundleVersion").value_or(unknown);
    enriched[QStringLiteral("osVersion")] = m_environment.operatingSystemVersion();
    enriched[QStringLiteral("deviceModel")] = m_environment.deviceModel();
    enriched[QStringLiteral("screenResolution")] = m_environment.screenResolution();
    enriched[QStringLiteral("availableMemory")] = m_environment.availableMemory();
    if (m_sessionStart)
        enriched[QStringLiteral("sessionDuration")] = sessionDuration();
    return enriched;
}

double AnalyticsService::sessionDuration() const
{
    return m_environment.now().seconds - m_sessionStart->seconds;
}

void AnalyticsService::startHeartbeat()
{
    m_heartbeat = std::make_unique<QObject>();
    m_timers.every(heartbeatInterval, m_heartbeat.get(), [this] { trackEvent(EventType::heartbeat); });
}

void AnalyticsService::sendBatch(bool sync)
{
    if (m_queue->isEmpty() || !m_analyticsEnabled)
        return;
    const std::vector<AnalyticsEvent> events = m_queue->takeAll();
    const QUrl url(m_environment.serverEndpoint, QUrl::StrictMode);
    // What is said of the user is said to the endpoint alone, never in the clear.
    if (url.scheme() != QStringLiteral("https") || url.host().isEmpty()) {
        m_queue->putBack(events);
        return;
    }
    QByteArray text;
    try {
        text = toJsonText(toJson(AnalyticsBatch{deviceID(), events}));
    } catch (const EncodingError&) {
        m_queue->putBack(events);
        return;
    }
    const AnalyticsRequest request{
        url,
        {std::begin(requestHeaders), std::end(requestHeaders)},
        m_environment.compress(text).value_or(QByteArray()),
        m_environment.requestTimeout};
    m_transport.post(
        request, [events, queue = std::weak_ptr(m_queue), printLine = m_environment.printLine](
                     const AnalyticsResponse& response) { complete(response, events, queue, printLine); });
    if (sync) {
        // Nobody ever releases it: from here on the process belongs to the request that is on its way.
        std::counting_semaphore<1> never(0);
        never.acquire();
    }
}

} // namespace quillo
