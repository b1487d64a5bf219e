// SPDX-License-Identifier: AGPL-3.0-or-later
#include "analytics/HttpsServer.h"

#include "platform/DefaultsKeys.h"
#include "platform/UserDefaults.h"
#include "support/ChildProcess.h"
#include "support/Printing.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QTcpServer>
#include <QTemporaryDir>

#include <csignal>
#include <memory>

namespace quillo {
namespace {

// As long as a test can afford to look at something that lasts for ever.
constexpr std::chrono::seconds whileLooking{1};

const QString certificate = QStringLiteral("server");

class AnalyticsFlushTest : public testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        authority = std::make_unique<TestAuthority>(QStringLiteral("Test authority"));
        authority->issue(certificate, QStringLiteral("localhost"));
    }
    static void TearDownTestSuite() { authority.reset(); }

    void startChild(const QString& endpoint, const char* consent, int events)
    {
        m_child = std::make_unique<ChildProcess>(
            QCoreApplication::applicationDirPath() + QStringLiteral("/analytics_flush_child"),
            QStringList{
                authority->certificatePath(QStringLiteral("authority")), QString::fromLatin1(consent),
                QString::number(events)},
            ChildProcess::Environment{
                {QStringLiteral("QUILLO_ANALYTICS_ENDPOINT"), endpoint},
                {QStringLiteral("XDG_CONFIG_HOME"), m_folder.path()},
                {QStringLiteral("no_proxy"), QStringLiteral("localhost")}});
    }

    void expectThatItWaitsUntilTheSystemEndsIt()
    {
        EXPECT_EQ(m_child->waitForEnd(whileLooking), std::nullopt) << "it must not end by itself";
        m_child->sendSignal(SIGTERM);
        EXPECT_EQ(m_child->waitForEnd(), SIGTERM)
            << "by the signal's default action, as the wait status says";
        EXPECT_EQ(m_child->readLine(), std::nullopt) << "nothing comes after the wait";
    }

    void expectThatItEndsAtOnce()
    {
        EXPECT_EQ(m_child->readLine(), "The child is back.");
        EXPECT_EQ(m_child->waitForEnd(), 0);
    }

    static inline std::unique_ptr<TestAuthority> authority;
    QTemporaryDir m_folder;
    std::unique_ptr<ChildProcess> m_child;
};

TEST_F(AnalyticsFlushTest, DeliversTheWholeBatchAndThenWaitsForEver)
{
    HttpsServer server(*authority, certificate, {QStringLiteral("200")});
    startChild(server.endpoint(), "on", 4);
    const AnalyticsBatch batch = server.requests(1).at(0).batch();
    ASSERT_EQ(batch.events.size(), 5U);
    EXPECT_EQ(batch.events.front().eventType, EventType::appLaunch);
    EXPECT_EQ(batch.events.back().eventType, EventType::appTerminate);
    EXPECT_TRUE(batch.events.back().metadata.contains(QStringLiteral("totalSessionDuration")));
    expectThatItWaitsUntilTheSystemEndsIt();
    EXPECT_EQ(server.requests().size(), 1U);
}

TEST_F(AnalyticsFlushTest, ReportsAFailureWhileItWaits)
{
    HttpsServer server(*authority, certificate, {QStringLiteral("500")});
    startChild(server.endpoint(), "on", 1);
    EXPECT_EQ(m_child->readLine(), "Analytics server returned status: 500");
    expectThatItWaitsUntilTheSystemEndsIt();
}

TEST_F(AnalyticsFlushTest, WaitsAlsoWithoutAServer)
{
    QTcpServer closed;
    ASSERT_TRUE(closed.listen(QHostAddress::LocalHost));
    const QString endpoint = QStringLiteral("https://localhost:%1/events").arg(closed.serverPort());
    closed.close();
    startChild(endpoint, "on", 1);
    EXPECT_THAT(
        m_child->readLine().value_or(QByteArray()).toStdString(),
        testing::StartsWith("Analytics send failed: "));
    expectThatItWaitsUntilTheSystemEndsIt();
}

TEST_F(AnalyticsFlushTest, LeavesTheSettingsOnDisk)
{
    HttpsServer server(*authority, certificate, {QStringLiteral("200")});
    startChild(server.endpoint(), "on", 1);
    const QString deviceID = server.requests(1).at(0).batch().deviceID;
    expectThatItWaitsUntilTheSystemEndsIt();
    const UserDefaults stored(m_folder.filePath(QStringLiteral("Quillo/Quillo.conf")));
    EXPECT_EQ(stored.string(DefaultsKeys::deviceID), deviceID);
    EXPECT_EQ(stored.boolean(DefaultsKeys::hasLaunchedBefore), true);
    EXPECT_EQ(stored.boolean(DefaultsKeys::analyticsEnabled), true);
}

TEST_F(AnalyticsFlushTest, EndsAtOnceWhileItIsOff)
{
    HttpsServer server(*authority, certificate, {QStringLiteral("200")});
    startChild(server.endpoint(), "off", 4);
    expectThatItEndsAtOnce();
    EXPECT_TRUE(server.requests().empty());
}

TEST_F(AnalyticsFlushTest, EndsAtOnceWithAnEmptyQueue)
{
    HttpsServer server(*authority, certificate, {QStringLiteral("200")});
    startChild(server.endpoint(), "on", 0);
    expectThatItEndsAtOnce();
    EXPECT_TRUE(server.requests().empty());
}

TEST_F(AnalyticsFlushTest, EndsCleanlyWithARequestOnItsWay)
{
    HttpsServer server(*authority, certificate, {QStringLiteral("hang")});
    startChild(server.endpoint(), "on", 9);
    expectThatItEndsAtOnce();
}

} // namespace
} // namespace quillo
