// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <QHash>
#include <QMutex>
#include <QString>

#include <optional>

namespace quillo {

/// The passwords that the user has given for encrypted files in this process, so that the extractor and the
/// recogniser can open what the viewer has unlocked. In memory only, never stored. Safe from any thread.
class DocumentPasswords
{
public:
    static DocumentPasswords& shared();

    void remember(const QString& path, const QString& password);
    std::optional<QString> password(const QString& path) const;

private:
    mutable QMutex m_mutex;
    QHash<QString, QString> m_passwords;
};

} // namespace quillo
