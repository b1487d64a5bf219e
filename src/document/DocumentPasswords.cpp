// SPDX-License-Identifier: AGPL-3.0-or-later
#include "document/DocumentPasswords.h"

#include <QMutexLocker>

namespace quillo {

DocumentPasswords& DocumentPasswords::shared()
{
    static auto* const passwords = new DocumentPasswords;
    return *passwords;
}

void DocumentPasswords::remember(const QString& path, const QString& password)
{
    const QMutexLocker locker(&m_mutex);
    m_passwords.insert(path, password);
}

std::optional<QString> DocumentPasswords::password(const QString& path) const
{
    const QMutexLocker locker(&m_mutex);
    const auto found = m_passwords.constFind(path);
    return found == m_passwords.cend() ? std::nullopt : std::optional(*found);
}

} // namespace quillo
