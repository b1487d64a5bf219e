// SPDX-License-Identifier: AGPL-3.0-or-later
#include "profile/UserProfileService.h"

#include "platform/UserDefaults.h"
#include "profile/UserProfileJson.h"
#include "support/Printing.h"

#include <gtest/gtest.h>

#include <QElapsedTimer>
#include <QTemporaryDir>

#include <vector>

namespace quillo {
namespace {

const PointInTime now{730902600.123456};

class UserProfileServiceTest : public testing::Test
{
protected:
    UserProfile stored() const
    {
        return decodeUserProfile(m_defaults.bytes(UserProfileService::profileKey).value_or(QByteArray()));
    }

    void edit(UserProfileService& service, QString UserProfile::*field, const QString& text) const
    {
        UserProfile profile = service.profile();
        profile.*field = text;
        service.setProfile(profile);
    }

    QTemporaryDir m_folder;
    UserDefaults m_defaults{m_folder.filePath(QStringLiteral("Quillo/Quillo.conf"))};
    UserProfileService m_service{m_defaults, [] { return now; }};
};

QImage stroke()
{
    QImage image(400, 160, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    image.setPixelColor(10, 20, QColor(0, 0, 0, 128));
    image.setPixelColor(11, 20, Qt::black);
    return image;
}

TEST_F(UserProfileServiceTest, StartsEmptyAndStoresNothingByItself)
{
    EXPECT_EQ(m_service.profile(), UserProfile());
    EXPECT_EQ(m_defaults.bytes(UserProfileService::profileKey), std::nullopt);
}

TEST_F(UserProfileServiceTest, UsesTheKeyOfTheProfile)
{
    EXPECT_EQ(UserProfileService::profileKey, QStringLiteral("com.quillo.userProfile"));
}

TEST_F(UserProfileServiceTest, StoresTheWholeProfileOnEveryAssignment)
{
    edit(m_service, &UserProfile::firstName, QStringLiteral("anna"));
    EXPECT_EQ(stored(), m_service.profile());
    edit(m_service, &UserProfile::jobTitle, QStringLiteral("smith"));
    EXPECT_EQ(stored(), m_service.profile());
    EXPECT_EQ(stored().firstName, QStringLiteral("anna"));
    EXPECT_EQ(stored().jobTitle, QStringLiteral("smith"));
}

TEST_F(UserProfileServiceTest, TellsItsObserversAfterItHasStored)
{
    std::vector<QString> seen;
    QObject::connect(&m_service, &UserProfileService::profileChanged, &m_service, [&] {
        EXPECT_EQ(stored(), m_service.profile());
        seen.push_back(m_service.profile().firstName);
    });
    edit(m_service, &UserProfile::firstName, QStringLiteral("a"));
    edit(m_service, &UserProfile::firstName, QStringLiteral("an"));
    EXPECT_EQ(seen, (std::vector<QString>{QStringLiteral("a"), QStringLiteral("an")}));
}

TEST_F(UserProfileServiceTest, FindsTheProfileAgainInTheNextProcess)
{
    edit(m_service, &UserProfile::lastName, QStringLiteral("berg"));
    m_service.saveSignature(stroke());
    ASSERT_TRUE(m_defaults.synchronize());
    UserDefaults next(m_folder.filePath(QStringLiteral("Quillo/Quillo.conf")));
    EXPECT_EQ(UserProfileService(next).profile(), m_service.profile());
}

TEST_F(UserProfileServiceTest, IsEmptyWhenTheStoredProfileCannotBeDecoded)
{
    m_service.saveSignature(stroke());
    Json value = parseJson(encodeUserProfile(m_service.profile()));
    value.erase("jobTitle");
    m_defaults.setBytes(UserProfileService::profileKey, toJsonText(value));
    UserProfileService next(m_defaults);
    EXPECT_EQ(next.profile(), UserProfile());
    EXPECT_EQ(m_defaults.bytes(UserProfileService::profileKey), toJsonText(value))
        << "the stored bytes stay until the next save";
    edit(next, &UserProfile::firstName, QStringLiteral("anna"));
    EXPECT_EQ(stored(), next.profile());
}

TEST_F(UserProfileServiceTest, IsEmptyWhenTheStoreHoldsSomethingElse)
{
    m_defaults.setString(UserProfileService::profileKey, QStringLiteral("{}"));
    EXPECT_EQ(UserProfileService(m_defaults).profile(), UserProfile());
    m_defaults.setBytes(UserProfileService::profileKey, QByteArray(1000, '['));
    EXPECT_EQ(UserProfileService(m_defaults).profile(), UserProfile());
}

TEST_F(UserProfileServiceTest, SavesASignatureAsPngWithItsAlpha)
{
    edit(m_service, &UserProfile::signatureFullName, QStringLiteral("A. Berg"));
    m_service.saveSignature(stroke());
    const UserProfile& profile = m_service.profile();
    ASSERT_TRUE(profile.signatureImageData.has_value());
    EXPECT_TRUE(profile.signatureImageData->startsWith("\x89PNG"));
    const QImage image = QImage::fromData(*profile.signatureImageData);
    EXPECT_EQ(image.size(), QSize(400, 160));
    EXPECT_EQ(image.pixelColor(0, 0).alpha(), 0);
    EXPECT_EQ(image.pixelColor(10, 20).alpha(), 128);
    EXPECT_EQ(image.pixelColor(11, 20), QColor(Qt::black));
    EXPECT_EQ(profile.signatureCreatedDate, now);
    EXPECT_EQ(profile.signatureFullName, QStringLiteral("A. Berg"));
    EXPECT_EQ(stored(), profile);
}

TEST_F(UserProfileServiceTest, SavesASignatureInTwoSteps)
{
    std::vector<std::pair<bool, bool>> seen;
    QObject::connect(&m_service, &UserProfileService::profileChanged, &m_service, [&] {
        seen.emplace_back(
            m_service.profile().signatureImageData.has_value(),
            m_service.profile().signatureCreatedDate.has_value());
    });
    m_service.saveSignature(stroke());
    m_service.clearSignature();
    EXPECT_EQ(
        seen,
        (std::vector<std::pair<bool, bool>>{{true, false}, {true, true}, {false, true}, {false, false}}));
}

TEST_F(UserProfileServiceTest, KeepsThePreviousSignatureWhenTheImageIsNone)
{
    m_service.saveSignature(stroke());
    const UserProfile before = m_service.profile();
    m_service.saveSignature(QImage());
    EXPECT_EQ(m_service.profile(), before);
}

TEST_F(UserProfileServiceTest, ForgetsTheSignatureAndNothingElse)
{
    edit(m_service, &UserProfile::firstName, QStringLiteral("anna"));
    const UserProfile before = m_service.profile();
    m_service.saveSignature(stroke());
    m_service.clearSignature();
    EXPECT_EQ(m_service.profile(), before);
    EXPECT_EQ(stored(), before);
}

TEST_F(UserProfileServiceTest, KeepsASignatureOfTwentyMegabytes)
{
    UserProfile profile;
    profile.signatureImageData = QByteArray(20'000'000, '\xa5');
    m_service.setProfile(profile);
    ASSERT_TRUE(m_defaults.synchronize());
    UserDefaults next(m_folder.filePath(QStringLiteral("Quillo/Quillo.conf")));
    EXPECT_TRUE(UserProfileService(next).profile() == profile);
}

} // namespace
} // namespace quillo
