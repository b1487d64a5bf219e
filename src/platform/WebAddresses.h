// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <QString>

/// Every address on the web that the program knows. The hosts lie in the reserved top-level domain; who
/// distributes the program puts their own here, and the collection endpoint into the build.
namespace quillo::WebAddresses {

inline const QString website = QStringLiteral("https://quillo.example/");
inline const QString help = QStringLiteral("https://quillo.example/help");
inline const QString privacyPolicy = QStringLiteral("https://quillo.example/privacy");
inline const QString support = QStringLiteral("https://quillo.example/support");
inline const QString supportEmail = QStringLiteral("support@quillo.example");

/// Where usage events are sent: the CMake variable QUILLO_ANALYTICS_ENDPOINT of the build, unless the
/// environment variable of the same name is set.
QString collectionEndpoint();

} // namespace quillo::WebAddresses
