// SPDX-License-Identifier: AGPL-3.0-or-later
#include "analytics/AnalyticsService.h"

#include "analytics/AnalyticsFakes.h"
#include "analytics/HttpsServer.h"
#include "network/NetworkTransport.h"
#include "platform/DefaultsKeys.h"
#include "platform/UserDefaults.h"
#include "support/Printing.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QSet>
#include <QTcpServer>
#include <QTemporaryDir>
#include <QTest>

#include <atomic>
#include <mutex>

namespace quillo {
namespace {

using namespace std::chrono_literals;
using testing::StartsWith;

constexpr std::chrono::milliseconds shortTimeout = 3s;
constexpr std::chrono::milliseconds longTimeout = 60s;

const QString certificate = QStringLiteral("server");

/// Counts the requests that are over, so that a test can wait for them.
class CountingTransport : public AnalyticsTransport
{
public:
    explicit CountingTransport(AnalyticsTransport& transport)
        : m_transport(transport)
    {}

    void post(const AnalyticsRequest& request, Completion completion) override
    {
        m_transport.post(request, [this, completion](const AnalyticsResponse& response) {
            completion(response);
            ++m_completed;
        });
    }

    bool waitFor(int completed) const
    {
        return QTest::qWaitFor([&] { return m_completed == completed; }, 60'000);
    }

private:
    AnalyticsTransport& m_transport;
    std::atomic<int> m_completed = 0;
};

class AnalyticsUploadTest : public testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        // Whatever proxy the machine has, these servers are its own.
        qputenv("no_proxy", "localhost");
        authority = std::make_unique<TestAuthority>(QStringLiteral("Test authority"));
        authority->issue(certificate, QStringLiteral("localhost"));
        authority->trust();
    }
    static void TearDownTestSuite() { authority.reset(); }

    std::unique_ptr<AnalyticsService> makeService(const QString& endpoint, std::chrono::milliseconds timeout)
    {
        m_defaults.setBoolean(DefaultsKeys::analyticsEnabled, true);
        AnalyticsEnvironment environment;
        environment.serverEndpoint = endpoint;
        environment.requestTimeout = timeout;
        environment.printLine = [this](const QString& line) {
            const std::lock_guard guard(m_mutex);
            m_lines.push_back(line.toStdString());
        };
        return std::make_unique<AnalyticsService>(m_defaults, m_timers, m_counting, environment);
    }

    std::vector<std::string> lines()
    {
        const std::lock_guard guard(m_mutex);
        return m_lines;
    }

    static void track(AnalyticsService& service, qint64 first, qint64 last)
    {
        for (qint64 n = first; n <= last; ++n)
            service.trackEvent(EventType::zoom, {{QStringLiteral("n"), n}});
    }

    static std::vector<qint64> numbers(const std::vector<AnalyticsEvent>& events)
    {
        std::vector<qint64> result;
        result.reserve(events.size());
        for (const AnalyticsEvent& event : events)
            result.push_back(event.metadata.value(QStringLiteral("n")).toLongLong());
        return result;
    }

    static inline std::unique_ptr<TestAuthority> authority;
    const std::vector<qint64> m_oneToTen{1, 2, 3, 4, 5, 6, 7, 8, 9, 10};
    QTemporaryDir m_folder;
    UserDefaults m_defaults{m_folder.filePath(QStringLiteral("Quillo/Quillo.conf"))};
    FakeTimers m_timers;
    std::mutex m_mutex;
    std::vector<std::string> m_lines;
    NetworkTransport m_transport;
    CountingTransport m_counting{m_transport};
};

TEST_F(AnalyticsUploadTest, DeliversABatch)
{
    HttpsServer server(*authority, certificate, {QStringLiteral("200")});
    const auto service = makeService(server.endpoint(), longTimeout);
    track(*service, 1, 10);
    ASSERT_TRUE(m_counting.waitFor(1));
    EXPECT_TRUE(service->eventQueue().empty());
    EXPECT_TRUE(lines().empty());
    ASSERT_EQ(server.requests(1).size(), 1U);
    const ReceivedRequest& request = server.requests().front();
    EXPECT_EQ(request.method, QStringLiteral("POST"));
    EXPECT_EQ(request.path, QStringLiteral("/events"));
    EXPECT_EQ(request.headers.value(QStringLiteral("content-type")), QStringLiteral("application/json"));
    EXPECT_EQ(request.headers.value(QStringLiteral("content-encoding")), QStringLiteral("gzip"));
    EXPECT_EQ(request.batch().deviceID, service->deviceID());
    EXPECT_EQ(numbers(request.batch().events), m_oneToTen);
}

TEST_F(AnalyticsUploadTest, DeliversManyBatchesThatAreDueAtOnce)
{
    HttpsServer server(*authority, certificate, {QStringLiteral("200")});
    const auto service = makeService(server.endpoint(), longTimeout);
    constexpr int batches = 30;
    track(*service, 1, 10 * batches);
    ASSERT_TRUE(m_counting.waitFor(batches));
    EXPECT_TRUE(lines().empty()) << lines().front();
    QSet<qint64> delivered;
    for (const ReceivedRequest& request : server.requests(batches)) {
        for (const qint64 number : numbers(request.batch().events)) {
            EXPECT_FALSE(delivered.contains(number)) << number << " came twice";
            delivered.insert(number);
        }
    }
    EXPECT_EQ(delivered.size(), 10 * batches);
}

TEST_F(AnalyticsUploadTest, TellsTheServerNothingElse)
{
    HttpsServer server(*authority, certificate, {QStringLiteral("200")});
    const auto service = makeService(server.endpoint(), longTimeout);
    track(*service, 1, 10);
    ASSERT_TRUE(m_counting.waitFor(1));
    track(*service, 11, 20);
    ASSERT_TRUE(m_counting.waitFor(2));
    const QSet<QString> expected{
        QStringLiteral("host"),
        QStringLiteral("content-type"),
        QStringLiteral("content-encoding"),
        QStringLiteral("content-length"),
        QStringLiteral("user-agent"),
        QStringLiteral("accept-language"),
        QStringLiteral("accept-encoding"),
        QStringLiteral("connection")};
    for (const ReceivedRequest& request : server.requests(2)) {
        const QStringList names = request.headers.keys();
        EXPECT_EQ(QSet<QString>(names.begin(), names.end()) - expected, QSet<QString>())
            << "the server sets a cookie, which must not come back";
        EXPECT_EQ(request.headers.value(QStringLiteral("user-agent")), QStringLiteral("Quillo"));
        EXPECT_EQ(request.headers.value(QStringLiteral("accept-language")), QStringLiteral("*"));
    }
}

TEST_F(AnalyticsUploadTest, DoesNotFollowARedirect)
{
    HttpsServer server(*authority, certificate, {QStringLiteral("301"), QStringLiteral("200")});
    const auto service = makeService(server.endpoint(), longTimeout);
    track(*service, 1, 10);
    ASSERT_TRUE(m_counting.waitFor(1));
    EXPECT_EQ(numbers(service->eventQueue()), m_oneToTen);
    EXPECT_EQ(server.requests(1).size(), 1U);
}

TEST_F(AnalyticsUploadTest, IsNotHeldUpByAnEndlessAnswer)
{
    HttpsServer server(*authority, certificate, {QStringLiteral("endless")});
    const auto service = makeService(server.endpoint(), longTimeout);
    track(*service, 1, 10);
    EXPECT_EQ(server.requests(1).size(), 1U);
    track(*service, 11, 20);
    EXPECT_EQ(server.requests(2).size(), 2U);
}

struct Failure
{
    const char* name;
    const char* answer;
    const char* line;
    std::chrono::milliseconds timeout;
};

std::ostream& operator<<(std::ostream& stream, const Failure& failure)
{
    return stream << failure.name;
}

class AnalyticsUploadFailureTest : public AnalyticsUploadTest, public testing::WithParamInterface<Failure>
{
};

TEST_P(AnalyticsUploadFailureTest, PutsEventsBackAndDeliversEachOnceLater)
{
    HttpsServer server(
        *authority, certificate, {QString::fromLatin1(GetParam().answer), QStringLiteral("200")});
    const auto service = makeService(server.endpoint(), GetParam().timeout);
    track(*service, 1, 10);
    track(*service, 11, 12);
    ASSERT_TRUE(m_counting.waitFor(1));
    const std::vector<qint64> requeued{11, 12, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10};
    EXPECT_EQ(numbers(service->eventQueue()), requeued);
    ASSERT_EQ(lines().size(), 1U);
    EXPECT_THAT(lines().front(), StartsWith(GetParam().line));

    m_timers.advance(300s);
    ASSERT_TRUE(m_counting.waitFor(2));
    EXPECT_TRUE(service->eventQueue().empty());
    EXPECT_EQ(lines().size(), 1U);
    ASSERT_EQ(server.requests(2).size(), 2U) << "a request must not go out twice by itself";
    EXPECT_EQ(numbers(server.requests().at(0).batch().events), m_oneToTen);
    EXPECT_EQ(numbers(server.requests().at(1).batch().events), requeued);
}

INSTANTIATE_TEST_SUITE_P(
    , AnalyticsUploadFailureTest,
    testing::Values(
        Failure{"Created", "201", "Analytics server returned status: 201", longTimeout},
        Failure{"NoContent", "204", "Analytics server returned status: 204", longTimeout},
        Failure{"Moved", "301", "Analytics server returned status: 301", longTimeout},
        Failure{"BadRequest", "400", "Analytics server returned status: 400", longTimeout},
        Failure{"Unauthorized", "401", "Analytics server returned status: 401", longTimeout},
        Failure{"NotFound", "404", "Analytics server returned status: 404", longTimeout},
        Failure{"ServerError", "500", "Analytics server returned status: 500", longTimeout},
        Failure{"Unavailable", "503", "Analytics server returned status: 503", longTimeout},
        Failure{"Hang", "hang", "Analytics send failed: The request timed out.", shortTimeout},
        Failure{"CutConnection", "cut", "Analytics send failed: ", longTimeout},
        Failure{"CutAnswer", "half", "Analytics send failed: ", longTimeout}),
    [](const auto& test) { return test.param.name; });

TEST_F(AnalyticsUploadTest, DeliversEachEventOnceAlsoOverAnOldConnectionThatIsCut)
{
    HttpsServer server(
        *authority, certificate, {QStringLiteral("200"), QStringLiteral("cut"), QStringLiteral("200")});
    const auto service = makeService(server.endpoint(), longTimeout);
    track(*service, 1, 10);
    ASSERT_TRUE(m_counting.waitFor(1));
    track(*service, 11, 20);
    ASSERT_TRUE(m_counting.waitFor(2));
    EXPECT_EQ(service->eventQueue().size(), 10U);
    EXPECT_EQ(server.requests(2).size(), 2U) << "a request must not go out twice by itself";
}

class AnalyticsUploadRefusalTest : public AnalyticsUploadTest
{
protected:
    /// What the console says of a batch that cannot be delivered.
    std::string lineAfterUploadTo(const QString& endpoint, std::chrono::milliseconds timeout = longTimeout)
    {
        const auto service = makeService(endpoint, timeout);
        track(*service, 1, 10);
        EXPECT_TRUE(m_counting.waitFor(1));
        EXPECT_EQ(numbers(service->eventQueue()), m_oneToTen);
        EXPECT_EQ(lines().size(), 1U);
        return lines().empty() ? std::string() : lines().front();
    }
};

TEST_F(AnalyticsUploadRefusalTest, TrustsNoStrangersCertificate)
{
    const TestAuthority stranger(QStringLiteral("Stranger"));
    stranger.issue(certificate, QStringLiteral("localhost"));
    HttpsServer server(stranger, certificate, {QStringLiteral("200")});
    EXPECT_THAT(lineAfterUploadTo(server.endpoint()), StartsWith("Analytics send failed: "));
    EXPECT_TRUE(server.requests().empty()) << "nothing may be said before the certificate is verified";
}

TEST_F(AnalyticsUploadRefusalTest, TrustsNoCertificateOfAnotherHost)
{
    authority->issue(QStringLiteral("elsewhere"), QStringLiteral("elsewhere.example"));
    HttpsServer server(*authority, QStringLiteral("elsewhere"), {QStringLiteral("200")});
    EXPECT_THAT(lineAfterUploadTo(server.endpoint()), StartsWith("Analytics send failed: "));
    EXPECT_TRUE(server.requests().empty());
}

TEST_F(AnalyticsUploadRefusalTest, GivesUpOnARefusedPort)
{
    QTcpServer closed;
    ASSERT_TRUE(closed.listen(QHostAddress::LocalHost));
    const QString endpoint = QStringLiteral("https://localhost:%1/events").arg(closed.serverPort());
    closed.close();
    EXPECT_THAT(lineAfterUploadTo(endpoint), StartsWith("Analytics send failed: "));
}

TEST_F(AnalyticsUploadRefusalTest, GivesUpOnAServerThatNeverGreets)
{
    // The kernel accepts the connection; nobody ever speaks TLS on it.
    QTcpServer silent;
    ASSERT_TRUE(silent.listen(QHostAddress::LocalHost));
    const QString endpoint = QStringLiteral("https://localhost:%1/events").arg(silent.serverPort());
    silent.pauseAccepting();
    EXPECT_EQ(lineAfterUploadTo(endpoint, shortTimeout), "Analytics send failed: The request timed out.");
}

TEST_F(AnalyticsUploadRefusalTest, GivesUpOnAHostThatDoesNotExist)
{
    EXPECT_THAT(
        lineAfterUploadTo(QStringLiteral("https://nowhere.invalid/events")),
        StartsWith("Analytics send failed: "));
}

TEST_F(AnalyticsUploadTest, DropsWhatIsOnItsWayWhenItEnds)
{
    HttpsServer server(*authority, certificate, {QStringLiteral("hang")});
    const auto service = makeService(server.endpoint(), longTimeout);
    {
        NetworkTransport transport;
        bool completed = false;
        transport.post(
            {QUrl(server.endpoint()), {}, QByteArray("{}"), longTimeout},
            [&](const AnalyticsResponse&) { completed = true; });
        EXPECT_EQ(server.requests(1).size(), 1U);
        EXPECT_FALSE(completed);
    }
    EXPECT_TRUE(lines().empty());
}

} // namespace
} // namespace quillo
