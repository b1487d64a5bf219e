// SPDX-License-Identifier: AGPL-3.0-or-later
#include "analytics/AnalyticsService.h"

#include "analytics/AnalyticsFakes.h"
#include "analytics/AnalyticsJson.h"
#include "analytics/Inflate.h"
#include "platform/DefaultsKeys.h"
#include "platform/UserDefaults.h"
#include "support/Printing.h"

#include <gtest/gtest.h>

#include <QPoint>
#include <QRegularExpression>
#include <QTemporaryDir>

namespace quillo {
namespace {

using namespace std::chrono_literals;

const QRegularExpression upperCaseUUID(QStringLiteral("\\A[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}\\z"));

class AnalyticsServiceTest : public testing::Test
{
protected:
    AnalyticsServiceTest() { m_defaults.setBoolean(DefaultsKeys::analyticsEnabled, true); }

    AnalyticsEnvironment environment()
    {
        AnalyticsEnvironment result;
        result.now = [this] { return m_now; };
        result.bundleValue = [](QStringView key) {
            return std::optional(QStringLiteral("value of ") + key.toString());
        };
        result.operatingSystemVersion = [] { return QStringLiteral("System 1"); };
        result.deviceModel = [] { return QStringLiteral("Model 2"); };
        result.screenResolution = [] { return QStringLiteral("1512x982"); };
        result.availableMemory = [] { return qint64(4096); };
        result.printLine = [this](const QString& line) { m_lines.append(line); };
        result.serverEndpoint = QStringLiteral("https://collect.example/events");
        result.requestTimeout = 60s;
        return result;
    }

    std::unique_ptr<AnalyticsService> makeService(const AnalyticsEnvironment& environment)
    {
        return std::make_unique<AnalyticsService>(m_defaults, m_timers, m_transport, environment);
    }
    std::unique_ptr<AnalyticsService> makeService() { return makeService(environment()); }

    static void track(AnalyticsService& service, int count, int first = 1)
    {
        for (int i = first; i < first + count; ++i)
            service.trackEvent(EventType::zoom, {{QStringLiteral("n"), qint64(i)}});
    }

    /// The numbers that track() gave the events.
    static std::vector<qint64> numbers(const std::vector<AnalyticsEvent>& events)
    {
        std::vector<qint64> result;
        result.reserve(events.size());
        for (const AnalyticsEvent& event : events)
            result.push_back(event.metadata.value(QStringLiteral("n")).toLongLong());
        return result;
    }

    static std::vector<qint64> range(qint64 first, qint64 last)
    {
        std::vector<qint64> result;
        for (qint64 i = first; i <= last; ++i)
            result.push_back(i);
        return result;
    }

    AnalyticsBatch sentBatch(std::size_t index) const
    {
        return analyticsBatchFromJson(parseJson(inflated(m_transport.requests.at(index).body)));
    }

    void pass(std::chrono::milliseconds time)
    {
        m_now.seconds += std::chrono::duration<double>(time).count();
        m_timers.advance(time);
    }

    QTemporaryDir m_folder;
    UserDefaults m_defaults{m_folder.filePath(QStringLiteral("Quillo/Quillo.conf"))};
    FakeTimers m_timers;
    FakeTransport m_transport;
    PointInTime m_now{727012800.25};
    QStringList m_lines;
};

TEST_F(AnalyticsServiceTest, MakesItsDeviceIdentifierOnceAndForAll)
{
    const QString first = makeService()->deviceID();
    EXPECT_TRUE(upperCaseUUID.match(first).hasMatch()) << first.toStdString();
    EXPECT_EQ(m_defaults.string(DefaultsKeys::deviceID), first);
    EXPECT_EQ(makeService()->deviceID(), first);
    m_defaults.setString(DefaultsKeys::deviceID, QStringLiteral("another"));
    EXPECT_EQ(makeService()->deviceID(), QStringLiteral("another"));
}

TEST_F(AnalyticsServiceTest, SharesItsDeviceIdentifierWithOtherInstancesOfTheProgram)
{
    const QString first = makeService()->deviceID();
    ASSERT_TRUE(m_defaults.synchronize());
    UserDefaults other(m_folder.filePath(QStringLiteral("Quillo/Quillo.conf")));
    EXPECT_EQ(AnalyticsService(other, m_timers, m_transport, environment()).deviceID(), first);
}

TEST_F(AnalyticsServiceTest, IsOffUntilTheUserConsents)
{
    m_defaults.remove(DefaultsKeys::analyticsEnabled);
    const auto service = makeService();
    EXPECT_FALSE(service->analyticsEnabled());
    service->initialize();
    track(*service, 20);
    pass(900s);
    service->flush();
    EXPECT_TRUE(service->eventQueue().empty());
    EXPECT_TRUE(m_transport.requests.empty());
    EXPECT_TRUE(m_defaults.string(DefaultsKeys::deviceID).has_value());
    EXPECT_EQ(m_defaults.boolean(DefaultsKeys::hasLaunchedBefore), true);
    EXPECT_EQ(m_defaults.boolean(DefaultsKeys::analyticsEnabled), std::nullopt);
}

TEST_F(AnalyticsServiceTest, ReadsTheConsentOnlyWhenItIsMade)
{
    const auto on = makeService();
    m_defaults.setBoolean(DefaultsKeys::analyticsEnabled, false);
    EXPECT_TRUE(on->analyticsEnabled());
    const auto off = makeService();
    m_defaults.setBoolean(DefaultsKeys::analyticsEnabled, true);
    EXPECT_FALSE(off->analyticsEnabled());
    track(*off, 1);
    EXPECT_TRUE(off->eventQueue().empty());
}

TEST_F(AnalyticsServiceTest, WritesEveryChangeOfConsentAtOnce)
{
    const auto service = makeService();
    std::vector<bool> seen;
    QObject::connect(
        service.get(), &AnalyticsService::analyticsEnabledChanged, service.get(),
        [&](bool enabled) { seen.push_back(enabled); });
    service->setAnalyticsEnabled(false);
    EXPECT_EQ(m_defaults.boolean(DefaultsKeys::analyticsEnabled), false);
    service->setAnalyticsEnabled(true);
    EXPECT_EQ(m_defaults.boolean(DefaultsKeys::analyticsEnabled), true);
    EXPECT_EQ(seen, (std::vector<bool>{false, true}));
}

TEST_F(AnalyticsServiceTest, TracksTheFirstLaunchAsSuch)
{
    for (const bool first : {true, false}) {
        const auto service = makeService();
        service->initialize();
        ASSERT_EQ(service->eventQueue().size(), 1U);
        const AnalyticsEvent event = service->eventQueue().front();
        EXPECT_EQ(event.eventType, EventType::appLaunch);
        EXPECT_EQ(event.metadata.value(QStringLiteral("firstLaunch")), QVariant(first));
        EXPECT_TRUE(
            upperCaseUUID.match(event.metadata.value(QStringLiteral("sessionID")).toString()).hasMatch());
    }
    EXPECT_EQ(m_defaults.boolean(DefaultsKeys::hasLaunchedBefore), true);
}

TEST_F(AnalyticsServiceTest, SpendsTheFirstLaunchAlsoWhileItIsOff)
{
    m_defaults.setBoolean(DefaultsKeys::analyticsEnabled, false);
    makeService()->initialize();
    m_defaults.setBoolean(DefaultsKeys::analyticsEnabled, true);
    const auto service = makeService();
    service->initialize();
    EXPECT_EQ(service->eventQueue().front().metadata.value(QStringLiteral("firstLaunch")), QVariant(false));
}

TEST_F(AnalyticsServiceTest, KeepsTheSessionIdentifierToTheLaunchEvent)
{
    const auto service = makeService();
    service->initialize();
    track(*service, 1);
    EXPECT_TRUE(service->eventQueue().at(0).metadata.contains(QStringLiteral("sessionID")));
    EXPECT_FALSE(service->eventQueue().at(1).metadata.contains(QStringLiteral("sessionID")));
}

TEST_F(AnalyticsServiceTest, AddsTheEnvironmentToEveryEvent)
{
    const auto service = makeService();
    service->initialize();
    pass(1500ms);
    service->trackEvent(
        EventType::search,
        {{QStringLiteral("queryLength"), 3}, {QStringLiteral("osVersion"), QStringLiteral("mine")}});
    const AnalyticsEvent event = service->eventQueue().back();
    EXPECT_EQ(event.deviceID, service->deviceID());
    EXPECT_EQ(event.eventType, EventType::search);
    EXPECT_EQ(event.timestamp, m_now);
    EXPECT_EQ(
        event.metadata,
        (QVariantMap{
            {QStringLiteral("queryLength"), 3},
            {QStringLiteral("appVersion"), QStringLiteral("value of CFBundleShortVersionString")},
            {QStringLiteral("buildNumber"), QStringLiteral("value of CFBundleVersion")},
            {QStringLiteral("osVersion"), QStringLiteral("System 1")},
            {QStringLiteral("deviceModel"), QStringLiteral("Model 2")},
            {QStringLiteral("screenResolution"), QStringLiteral("1512x982")},
            {QStringLiteral("availableMemory"), qint64(4096)},
            {QStringLiteral("sessionDuration"), 1.5}}));
}

TEST_F(AnalyticsServiceTest, DoesWithoutWhatTheHostCannotTell)
{
    AnalyticsEnvironment poor = environment();
    poor.bundleValue = [](QStringView) { return std::optional<QString>(); };
    poor.screenResolution = [] { return QStringLiteral("unknown"); };
    poor.availableMemory = [] { return qint64(0); };
    const auto service = makeService(poor);
    track(*service, 1);
    const QVariantMap metadata = service->eventQueue().front().metadata;
    EXPECT_EQ(metadata.value(QStringLiteral("appVersion")).toString(), QStringLiteral("unknown"));
    EXPECT_EQ(metadata.value(QStringLiteral("buildNumber")).toString(), QStringLiteral("unknown"));
    EXPECT_EQ(metadata.value(QStringLiteral("screenResolution")).toString(), QStringLiteral("unknown"));
    EXPECT_EQ(metadata.value(QStringLiteral("availableMemory")), QVariant(qint64(0)));
    EXPECT_FALSE(metadata.contains(QStringLiteral("sessionDuration"))) << "no session has started";
}

TEST_F(AnalyticsServiceTest, AsksThisMachineByDefault)
{
    AnalyticsService service(m_defaults, m_timers, m_transport);
    track(service, 1);
    const QVariantMap metadata = service.eventQueue().front().metadata;
    EXPECT_EQ(metadata.value(QStringLiteral("appVersion")).toString(), QStringLiteral("1.0.0"));
    EXPECT_EQ(metadata.value(QStringLiteral("buildNumber")).toString(), QStringLiteral("1"));
    EXPECT_GT(metadata.value(QStringLiteral("availableMemory")).toLongLong(), 0);
    EXPECT_NEAR(
        service.eventQueue().front().timestamp.seconds,
        PointInTime::of(QDateTime::currentDateTimeUtc()).seconds, 60.0);
}

TEST_F(AnalyticsServiceTest, UploadsWithTheTenthEventAndNotWithTheNinth)
{
    const auto service = makeService();
    track(*service, 9);
    EXPECT_TRUE(m_transport.requests.empty());
    track(*service, 1, 10);
    ASSERT_EQ(m_transport.requests.size(), 1U);
    EXPECT_TRUE(service->eventQueue().empty());
    EXPECT_EQ(sentBatch(0).deviceID, service->deviceID());
    EXPECT_EQ(numbers(sentBatch(0).events), range(1, 10));
}

TEST_F(AnalyticsServiceTest, SendsTheRequestThatTheServerKnows)
{
    const auto service = makeService();
    track(*service, 10);
    const AnalyticsRequest& request = m_transport.requests.at(0);
    EXPECT_EQ(request.url, QUrl(QStringLiteral("https://collect.example/events")));
    EXPECT_EQ(request.timeout, 60s);
    EXPECT_EQ(
        request.headers, (QList<std::pair<QByteArray, QByteArray>>{
                             {"Content-Type", "application/json"}, {"Content-Encoding", "gzip"}}));
    EXPECT_FALSE(inflated(request.body).isEmpty())
        << "the body is a raw DEFLATE stream, whatever its header says";
}

TEST_F(AnalyticsServiceTest, UploadsThreeHundredSecondsAfterEachEvent)
{
    const auto service = makeService();
    track(*service, 1);
    pass(100s);
    track(*service, 1, 2);
    pass(199'999ms);
    EXPECT_TRUE(m_transport.requests.empty());
    pass(1ms);
    ASSERT_EQ(m_transport.requests.size(), 1U);
    EXPECT_EQ(numbers(sentBatch(0).events), range(1, 2));
    EXPECT_EQ(m_timers.waiting(), 1U) << "each event has a delayed send of its own";
    pass(100s);
    EXPECT_EQ(m_transport.requests.size(), 1U) << "a delayed send that finds nothing does nothing";
    EXPECT_EQ(m_timers.waiting(), 0U);
}

TEST_F(AnalyticsServiceTest, TheEventThatFillsTheQueueHasADelayedSendOfItsOwn)
{
    const auto service = makeService();
    track(*service, 10);
    EXPECT_EQ(m_timers.waiting(), 10U);
    m_transport.failLast(QStringLiteral("refused"));
    pass(300s);
    ASSERT_EQ(m_transport.requests.size(), 2U);
    EXPECT_EQ(numbers(sentBatch(1).events), range(1, 10));
}

TEST_F(AnalyticsServiceTest, SendsAnEmptyBodyWhenTheBatchCannotBeCompressed)
{
    AnalyticsEnvironment withoutCompression = environment();
    withoutCompression.compress = [](const QByteArray&) { return std::nullopt; };
    const auto service = makeService(withoutCompression);
    track(*service, 10);
    ASSERT_EQ(m_transport.requests.size(), 1U) << "the request goes out anyway";
    EXPECT_TRUE(m_transport.requests[0].body.isEmpty());
    EXPECT_EQ(m_transport.requests[0].headers.at(1).second, "gzip");
}

TEST_F(AnalyticsServiceTest, BeatsEveryThreeHundredSeconds)
{
    const auto service = makeService();
    service->initialize();
    m_transport.requests.clear();
    pass(299'999ms);
    EXPECT_EQ(service->eventQueue().size(), 1U);
    pass(1ms);
    // The delayed send of the launch is due in the same moment.
    std::vector<AnalyticsEvent> events = service->eventQueue();
    for (std::size_t i = 0; i < m_transport.requests.size(); ++i) {
        for (const AnalyticsEvent& event : sentBatch(i).events)
            events.push_back(event);
    }
    const auto beat = std::find_if(events.begin(), events.end(), [](const auto& event) {
        return event.eventType == EventType::heartbeat;
    });
    ASSERT_NE(beat, events.end());
    EXPECT_EQ(beat->metadata.value(QStringLiteral("sessionDuration")).toDouble(), 300.0);
    EXPECT_EQ(beat->metadata.size(), 7) << "nothing but the environment";
}

TEST_F(AnalyticsServiceTest, HasOneHeartbeatHoweverOftenItIsInitialized)
{
    const auto service = makeService();
    service->setAnalyticsEnabled(false);
    service->initialize();
    service->initialize();
    EXPECT_EQ(m_timers.waiting(), 1U);
}

TEST_F(AnalyticsServiceTest, ForgetsWhatWasDelivered)
{
    const auto service = makeService();
    track(*service, 10);
    m_transport.answerLast(200);
    EXPECT_TRUE(service->eventQueue().empty());
    EXPECT_TRUE(m_lines.isEmpty());
    pass(600s);
    EXPECT_EQ(m_transport.requests.size(), 1U);
}

TEST_F(AnalyticsServiceTest, TakesAnAnswerWithoutAStatusForDelivered)
{
    const auto service = makeService();
    track(*service, 10);
    m_transport.completions.back()({std::nullopt, std::nullopt});
    EXPECT_TRUE(service->eventQueue().empty());
    EXPECT_TRUE(m_lines.isEmpty());
}

TEST_F(AnalyticsServiceTest, PutsEventsBackAfterAnyOtherStatus)
{
    for (const int status : {201, 204, 301, 400, 500}) {
        const auto service = makeService();
        m_lines.clear();
        track(*service, 10);
        track(*service, 2, 11);
        m_transport.answerLast(status);
        std::vector<qint64> expected{11, 12};
        for (const qint64 number : range(1, 10))
            expected.push_back(number);
        EXPECT_EQ(numbers(service->eventQueue()), expected) << "behind those that came meanwhile";
        EXPECT_EQ(m_lines, QStringList{QStringLiteral("Analytics server returned status: %1").arg(status)});
    }
}

TEST_F(AnalyticsServiceTest, PutsEventsBackAfterAnError)
{
    const auto service = makeService();
    track(*service, 10);
    m_transport.failLast(QStringLiteral("The wire is cut."));
    EXPECT_EQ(numbers(service->eventQueue()), range(1, 10));
    EXPECT_EQ(m_lines, QStringList{QStringLiteral("Analytics send failed: The wire is cut.")});
}

TEST_F(AnalyticsServiceTest, SendsABatchThatFailedWithTheNextTrigger)
{
    const auto service = makeService();
    track(*service, 10);
    m_transport.answerLast(204);
    EXPECT_EQ(m_transport.requests.size(), 1U) << "no retry of its own";
    track(*service, 1, 11);
    ASSERT_EQ(m_transport.requests.size(), 2U);
    EXPECT_EQ(numbers(sentBatch(1).events), range(1, 11));
}

TEST_F(AnalyticsServiceTest, OutlivedByARequestItForgetsTheEvents)
{
    auto service = makeService();
    track(*service, 10);
    service.reset();
    m_transport.failLast(QStringLiteral("late"));
    EXPECT_EQ(m_lines, QStringList{QStringLiteral("Analytics send failed: late")});
    EXPECT_EQ(m_timers.waiting(), 0U);
    pass(600s);
}

TEST_F(AnalyticsServiceTest, KeepsTheQueueWhileItIsTurnedOff)
{
    const auto service = makeService();
    track(*service, 3);
    service->setAnalyticsEnabled(false);
    track(*service, 3, 4);
    pass(300s);
    EXPECT_TRUE(m_transport.requests.empty());
    service->setAnalyticsEnabled(true);
    track(*service, 1, 7);
    pass(300s);
    ASSERT_EQ(m_transport.requests.size(), 1U);
    EXPECT_EQ(numbers(sentBatch(0).events), (std::vector<qint64>{1, 2, 3, 7}));
}

TEST_F(AnalyticsServiceTest, SendsNothingToAnEndpointThatIsNotHttps)
{
    for (const char* endpoint :
         {"", "no address", "http://collect.example/events", "https:///events", "https://a b/"}) {
        AnalyticsEnvironment bad = environment();
        bad.serverEndpoint = QString::fromLatin1(endpoint);
        const auto service = makeService(bad);
        track(*service, 12);
        EXPECT_EQ(numbers(service->eventQueue()), range(1, 12)) << endpoint;
    }
    EXPECT_TRUE(m_transport.requests.empty());
    EXPECT_TRUE(m_lines.isEmpty());
}

TEST_F(AnalyticsServiceTest, IsBlockedByAnEventThatCannotBeEncoded)
{
    const auto service = makeService();
    service->trackEvent(EventType::zoom, {{QStringLiteral("n"), 1}, {QStringLiteral("p"), QPoint()}});
    track(*service, 11, 2);
    pass(300s);
    EXPECT_TRUE(m_transport.requests.empty());
    EXPECT_EQ(numbers(service->eventQueue()), range(1, 12));
    EXPECT_TRUE(m_lines.isEmpty());
}

TEST_F(AnalyticsServiceTest, FlushesAnEmptyQueueAtOnce)
{
    const auto service = makeService();
    service->flush();
    EXPECT_TRUE(m_transport.requests.empty());
    EXPECT_TRUE(service->eventQueue().empty()) << "without a session no end of it is tracked";
}

TEST_F(AnalyticsServiceTest, FlushesAtOnceWhileItIsOff)
{
    const auto service = makeService();
    service->initialize();
    track(*service, 3);
    service->setAnalyticsEnabled(false);
    service->flush();
    EXPECT_TRUE(m_transport.requests.empty());
    EXPECT_EQ(service->eventQueue().size(), 4U);
}

TEST_F(AnalyticsServiceTest, FlushesAtOnceWhenTheEndOfTheSessionIsTheTenthEvent)
{
    const auto service = makeService();
    service->initialize();
    track(*service, 8);
    pass(2s);
    service->flush();
    ASSERT_EQ(m_transport.requests.size(), 1U) << "the threshold sends it, and nothing is left to wait for";
    const AnalyticsEvent last = sentBatch(0).events.back();
    EXPECT_EQ(last.eventType, EventType::appTerminate);
    EXPECT_EQ(last.metadata.value(QStringLiteral("totalSessionDuration")).toDouble(), 2.0);
    pass(299s);
    EXPECT_EQ(service->eventQueue().size(), 0U) << "the heart has stopped";
    EXPECT_EQ(m_transport.requests.size(), 1U) << "and nothing of it was sent";
}

} // namespace
} // namespace quillo
