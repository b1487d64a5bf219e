// SPDX-License-Identifier: AGPL-3.0-or-later
#include "analytics/Inflate.h"
#include "app/WindowFixture.h"
#include "document/DocumentState.h"
#include "insight/DocumentInsight.h"
#include "platform/UserDefaults.h"
#include "profile/UserProfileService.h"
#include "support/Printing.h"
#include "support/Widgets.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace quillo {
namespace {

// Stands in everything that belongs to the user, and nowhere else.
const QString marker = QStringLiteral("Xq7Marker");

bool showsTheMarker(const QByteArray& bytes)
{
    const QByteArray plain = marker.toUtf8();
    return bytes.toLower().contains(plain.toLower()) || bytes.contains(plain.toBase64().chopped(4)) ||
           bytes.toLower().contains(plain.toHex());
}

class PrivacyTest : public WindowFixture
{
protected:
    QUrl documentOfMarkers() const
    {
        const QByteArray text = marker.toUtf8();
        PDFWriter writer;
        for (int page = 0; page < 3; ++page) {
            writer.addPage(
                showText(72, 700, "Invoice for " + text) +
                showText(
                    72, 680,
                    "Amount due: $500.00, payable by January 5, 2027 to " + text + "@" + text + ".example"));
        }
        QDir(m_folder.path(QString())).mkpath(marker);
        return QUrl::fromLocalFile(
            m_folder.write(marker + QStringLiteral("/") + marker + QStringLiteral(".pdf"), writer.bytes()));
    }

    void fillTheProfile()
    {
        UserProfileService service(m_analytics.defaults());
        UserProfile profile;
        for (QString* field :
             {&profile.firstName, &profile.lastName, &profile.email, &profile.phone, &profile.organization,
              &profile.jobTitle, &profile.signatureFullName, &profile.address.street, &profile.address.city,
              &profile.address.country})
            *field = marker;
        profile.signatureImageData = marker.toUtf8();
        service.setProfile(profile);
    }

    /// Everything that was sent, unpacked.
    QByteArrayList bodies()
    {
        QByteArrayList result;
        for (const AnalyticsRequest& request : m_analytics.sendEverything()) {
            EXPECT_FALSE(showsTheMarker(request.url.toEncoded()));
            EXPECT_FALSE(showsTheMarker(request.body));
            for (const auto& [name, value] : request.headers)
                EXPECT_FALSE(showsTheMarker(name + value));
            result.append(inflated(request.body));
        }
        return result;
    }

    static QStringList eventTypes(const QByteArrayList& bodies)
    {
        QStringList types;
        for (const QByteArray& body : bodies) {
            const QJsonArray events = QJsonDocument::fromJson(body)[QStringLiteral("events")].toArray();
            for (const auto& event : events)
                types.append(event.toObject()[QStringLiteral("eventType")].toString());
        }
        return types;
    }
};

TEST_F(PrivacyTest, NothingOfTheUsersIsInAnyByteThatIsSent)
{
    fillTheProfile();
    m_analytics.service().initialize();
    show();
    post(documentOfMarkers());
    ASSERT_TRUE(hasText());
    ASSERT_TRUE(showsTheMarker(state().pageTexts()->front().text.toUtf8()));
    state().setSelectedText(marker);
    click(*m_window, QStringLiteral("Next page"));
    click(*m_window, QStringLiteral("Previous page"));
    click(*m_window, QStringLiteral("Zoom in"));
    click(*m_window, QStringLiteral("Zoom out"));
    click(*m_window, QStringLiteral("What is this document?"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return state().insight().has_value() && !state().isProcessing(); }));

    const QByteArrayList sent = bodies();
    for (const QByteArray& body : sent)
        EXPECT_FALSE(showsTheMarker(body)) << body.toStdString();
    for (const EventType type :
         {EventType::appLaunch, EventType::documentOpened, EventType::textExtractionComplete,
          EventType::pageNavigation, EventType::zoom, EventType::featureUsed,
          EventType::classificationComplete})
        EXPECT_TRUE(eventTypes(sent).contains(rawValue(type))) << rawValue(type).toStdString();
}

} // namespace
} // namespace quillo
