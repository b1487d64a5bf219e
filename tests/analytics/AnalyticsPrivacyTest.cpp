// SPDX-License-Identifier: AGPL-3.0-or-later
#include "analytics/AnalyticsService.h"

#include "analytics/AnalyticsFakes.h"
#include "analytics/HttpsServer.h"
#include "analytics/Inflate.h"
#include "network/NetworkTransport.h"
#include "platform/DefaultsKeys.h"
#include "platform/UserDefaults.h"
#include "support/Printing.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QTemporaryDir>

namespace quillo {
namespace {

// What the test puts into everything around the service that belongs to the user. The window's own test shows
// that the parts of the program say no more than what stands here.
const QString marker = QStringLiteral("Xq7Marker");

const QString documentText = marker + QStringLiteral(" owes 500 dollars");

/// What the parts of the program say with each event, here about a document full of markers.
const std::map<EventType, QList<QVariantMap>> emittedMetadata{
    {EventType::appLaunch, {{}}},
    {EventType::appTerminate, {{{QStringLiteral("totalSessionDuration"), 12.5}}}},
    {EventType::heartbeat, {{}}},
    {EventType::documentOpened, {{{QStringLiteral("hasSecurityScope"), true}}}},
    {EventType::documentSaved,
     {{{QStringLiteral("type"), QStringLiteral("in-place")}},
      {{QStringLiteral("type"), QStringLiteral("save-as")}}}},
    {EventType::documentSigned, {{}}},
    {EventType::textExtractionComplete,
     {{{QStringLiteral("pageCount"), 3}, {QStringLiteral("hasText"), !documentText.isEmpty()}}}},
    {EventType::ocrComplete, {{{QStringLiteral("pageCount"), 3}, {QStringLiteral("duration"), 1.5}}}},
    {EventType::classificationComplete,
     {{{QStringLiteral("type"), QStringLiteral("Bill / Invoice")},
       {QStringLiteral("confidence"), 0.5},
       {QStringLiteral("duration"), 0.01}}}},
    {EventType::actionDetectionComplete,
     {{{QStringLiteral("actionsFound"), 1}, {QStringLiteral("duration"), 0.01}}}},
    {EventType::extractionComplete,
     {{{QStringLiteral("itemsFound"), 1},
       {QStringLiteral("dates"), 0},
       {QStringLiteral("amounts"), 1},
       {QStringLiteral("duration"), 0.01}}}},
    {EventType::explanationComplete, {{{QStringLiteral("duration"), 0.01}}}},
    {EventType::featureUsed,
     {{{QStringLiteral("feature"), QStringLiteral("explainText")},
       {QStringLiteral("textLength"), documentText.size()}}}},
    {EventType::pageNavigation, {{{QStringLiteral("direction"), QStringLiteral("next")}}}},
    {EventType::zoom,
     {{{QStringLiteral("level"), 1.25}, {QStringLiteral("direction"), QStringLiteral("in")}}}},
    {EventType::search,
     {{{QStringLiteral("queryLength"), marker.size()}, {QStringLiteral("resultsCount"), 1}}}},
    {EventType::print, {{}}},
    {EventType::pageRotation, {{{QStringLiteral("direction"), QStringLiteral("left")}}}},
    {EventType::error, {{}}},
};

QByteArray profileOfMarkers()
{
    QByteArray text =
        R"({"firstName":"M","lastName":"M","email":"M@M.example","phone":"M","address":{"street":"M",)"
        R"("city":"M","state":"M","postalCode":"M","country":"M"},"organization":"M","jobTitle":"M",)"
        R"("signatureFullName":"M"})";
    return text.replace("\"M", '"' + marker.toUtf8());
}

bool showsTheMarker(const QByteArray& bytes)
{
    const QByteArray plain = marker.toUtf8();
    return bytes.toLower().contains(plain.toLower()) || bytes.contains(plain.toBase64().chopped(4)) ||
           bytes.toLower().contains(plain.toHex());
}

class AnalyticsPrivacyTest : public testing::Test
{
protected:
    void SetUp() override
    {
        for (const char* name : {"USER", "LOGNAME", "HOSTNAME", "HOME"})
            m_environment.insert_or_assign(name, qgetenv(name));
        for (const auto& [name, value] : m_environment)
            qputenv(name, marker.toUtf8());
        qputenv("no_proxy", "localhost");
        // The path and the name of the document, and the store's.
        ASSERT_TRUE(QDir(m_folder.path()).mkpath(marker));
        QDir::setCurrent(m_folder.filePath(marker));
    }
    void TearDown() override
    {
        for (const auto& [name, value] : m_environment)
            qputenv(name, value);
        QDir::setCurrent(m_oldFolder);
    }

    QTemporaryDir m_folder;

private:
    const QString m_oldFolder = QDir::currentPath();
    std::map<const char*, QByteArray> m_environment;
};

TEST_F(AnalyticsPrivacyTest, SendsNothingOfTheUserWithAnyEvent)
{
    TestAuthority authority(QStringLiteral("Test authority"));
    authority.issue(QStringLiteral("server"), QStringLiteral("localhost"));
    authority.trust();
    HttpsServer server(authority, QStringLiteral("server"), {QStringLiteral("200")});
    UserDefaults defaults(m_folder.filePath(marker + QStringLiteral("/Quillo.conf")));
    defaults.setBoolean(DefaultsKeys::analyticsEnabled, true);
    defaults.setBytes(QStringLiteral("com.quillo.userProfile"), profileOfMarkers());
    ASSERT_TRUE(showsTheMarker(profileOfMarkers()));
    FakeTimers timers;
    NetworkTransport transport;
    AnalyticsEnvironment environment;
    environment.serverEndpoint = server.endpoint();
    AnalyticsService service(defaults, timers, transport, environment);
    service.initialize();

    std::size_t tracked = 1;
    for (const EventType type : allEventTypes()) {
        ASSERT_TRUE(emittedMetadata.contains(type)) << rawValue(type).toStdString();
        for (const QVariantMap& metadata : emittedMetadata.at(type)) {
            service.trackEvent(type, metadata);
            ++tracked;
        }
    }
    timers.advance(std::chrono::seconds(300));

    std::size_t received = 0;
    for (std::size_t requests = 1; received < tracked; ++requests) {
        const ReceivedRequest& request = server.requests(requests).at(requests - 1);
        received += request.batch().events.size();
        EXPECT_FALSE(showsTheMarker(request.line)) << request.line.toStdString();
        EXPECT_FALSE(showsTheMarker(request.body));
        EXPECT_FALSE(showsTheMarker(inflated(request.body))) << inflated(request.body).toStdString();
    }
    EXPECT_GE(received, tracked);
}

} // namespace
} // namespace quillo
