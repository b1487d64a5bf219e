// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "json/PointInTime.h"

#include <QByteArray>
#include <QString>

#include <optional>

namespace quillo {

/// The user's own particulars, used to sign documents. They stay on the device.
struct UserProfile
{
    struct Address
    {
        QString street;
        QString city;
        QString state;
        QString postalCode;
        QString country;

        bool operator==(const Address&) const = default;
    };

    QString firstName;
    QString lastName;
    QString email;
    QString phone;
    std::optional<PointInTime> dateOfBirth;
    Address address;
    QString organization;
    QString jobTitle;
    /// PNG with alpha.
    std::optional<QByteArray> signatureImageData;
    std::optional<PointInTime> signatureCreatedDate;
    /// The name for typed signatures; when empty, it is built from the first and the last name.
    QString signatureFullName;

    /// The name that typed signatures use. Nothing is trimmed: a name of blanks is a name.
    QString fullName() const;
    /// The first user-perceived character of the first and of the last name, upper-cased.
    QString initials() const;
    /// Whether there is a first and a last name.
    bool isProfileComplete() const;

    bool operator==(const UserProfile&) const = default;
};

} // namespace quillo
