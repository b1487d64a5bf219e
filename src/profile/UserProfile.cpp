// SPDX-License-Identifier: AGPL-3.0-or-later
#include "profile/UserProfile.h"

#include <QStringList>
#include <QTextBoundaryFinder>

namespace quillo {
namespace {

QString firstCharacter(const QString& text)
{
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
    const qsizetype end = finder.toNextBoundary();
    return end < 0 ? QString() : text.first(end);
}

} // namespace

QString UserProfile::fullName() const
{
    if (!signatureFullName.isEmpty())
        return signatureFullName;
    QStringList names{firstName, lastName};
    names.removeAll(QString());
    return names.join(u' ');
}

QString UserProfile::initials() const
{
    return (firstCharacter(firstName) + firstCharacter(lastName)).toUpper();
}

bool UserProfile::isProfileComplete() const
{
    return !firstName.isEmpty() && !lastName.isEmpty();
}

} // namespace quillo
