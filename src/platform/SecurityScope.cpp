// SPDX-License-Identifier: AGPL-3.0-or-later
#include "platform/SecurityScope.h"

#include <QDir>
#include <QRegularExpression>

namespace quillo {

bool startAccessingSecurityScopedResource(const QUrl& url)
{
    // The portal's file system stands in the user's runtime folder, inside a sandbox also at a fixed place.
    static const auto* const portal =
        new QRegularExpression(QStringLiteral("^/run/(?:user/[0-9]+|flatpak)/doc/."));
    return url.isLocalFile() && portal->match(QDir::cleanPath(url.toLocalFile())).hasMatch();
}

} // namespace quillo
