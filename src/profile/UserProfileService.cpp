// SPDX-License-Identifier: AGPL-3.0-or-later
#include "profile/UserProfileService.h"

#include "platform/UserDefaults.h"
#include "profile/UserProfileJson.h"

#include <QBuffer>

#include <utility>

namespace quillo {

UserProfileService::UserProfileService(UserDefaults& defaults, Clock clock, QObject* parent)
    : QObject(parent)
    , m_defaults(defaults)
    , m_clock(std::move(clock))
    , m_profile(loadProfile(defaults))
{}

UserProfileService& UserProfileService::shared()
{
    static auto* const service = new UserProfileService(UserDefaults::standard());
    return *service;
}

void UserProfileService::setProfile(const UserProfile& profile)
{
    m_profile = profile;
    saveProfile();
    Q_EMIT profileChanged();
}

void UserProfileService::saveSignature(const QImage& image)
{
    QBuffer png;
    if (!png.open(QIODevice::WriteOnly) || !image.save(&png, "PNG"))
        return;
    UserProfile profile = m_profile;
    profile.signatureImageData = png.data();
    setProfile(profile);
    // An observer may have edited the profile meanwhile.
    profile = m_profile;
    profile.signatureCreatedDate = m_clock();
    setProfile(profile);
}

void UserProfileService::clearSignature()
{
    UserProfile profile = m_profile;
    profile.signatureImageData.reset();
    setProfile(profile);
    profile = m_profile;
    profile.signatureCreatedDate.reset();
    setProfile(profile);
}

UserProfile UserProfileService::loadProfile(const UserDefaults& defaults)
{
    const auto stored = defaults.bytes(profileKey);
    if (!stored)
        return {};
    try {
        return decodeUserProfile(*stored);
    } catch (const DecodingError&) {
        return {};
    }
}

void UserProfileService::saveProfile()
{
    m_defaults.setBytes(profileKey, encodeUserProfile(m_profile));
}

} // namespace quillo
