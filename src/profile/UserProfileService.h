// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "profile/UserProfile.h"

#include <QImage>
#include <QObject>

#include <functional>

namespace quillo {

class UserDefaults;

/// The one owner of the user's profile. It loads the profile when it is made and saves the whole of it on
/// every assignment; there is no other saving. A stored profile that cannot be decoded is an empty one, and
/// its bytes stay until the next assignment. Main thread only.
class UserProfileService : public QObject
{
    Q_OBJECT

public:
    using Clock = std::function<PointInTime()>;

    /// Where the defaults keep the profile's JSON text, as bytes.
    static inline const QString profileKey = QStringLiteral("com.quillo.userProfile");

    /// The defaults must outlive the service.
    explicit UserProfileService(
        UserDefaults& defaults, Clock clock = PointInTime::now, QObject* parent = nullptr);

    /// The process-wide service over the standard defaults; never destroyed.
    static UserProfileService& shared();

    const UserProfile& profile() const { return m_profile; }
    /// Stores the profile and then tells the observers. To edit a field, assign a changed copy.
    void setProfile(const UserProfile& profile);

    /// Makes the image, as PNG with its alpha, the signature of this moment. An image that cannot be
    /// encoded leaves everything as it is.
    void saveSignature(const QImage& image);
    /// Forgets the signature and when it was made.
    void clearSignature();

Q_SIGNALS:
    void profileChanged();

private:
    static UserProfile loadProfile(const UserDefaults& defaults);
    void saveProfile();

    UserDefaults& m_defaults;
    Clock m_clock;
    UserProfile m_profile;
};

} // namespace quillo
