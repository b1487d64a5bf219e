// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringView>

#include <optional>

namespace quillo {

/// What the application bundle says of itself, by the platform's own key names:
/// "CFBundleName", "CFBundleShortVersionString" (the version, "1.0.0"), "CFBundleVersion" (the build, "1").
namespace BundleInfo {

/// The value under the key, or none for any other key.
std::optional<QString> informationValue(QStringView key);

} // namespace BundleInfo
} // namespace quillo
