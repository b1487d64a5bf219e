// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <QString>

/// The keys of the user's defaults, but for the profile's, which is its service's own. What an absent key
/// means is the reader's to say, because two readers of "analyticsEnabled" differ on purpose: the analytics
/// service takes absence for "off", the consent toggles show it as "on".
namespace quillo::DefaultsKeys {

/// Boolean.
inline const QString analyticsEnabled = QStringLiteral("analyticsEnabled");
/// String: upper-case UUID text.
inline const QString deviceID = QStringLiteral("deviceID");
/// Boolean, false when absent.
inline const QString hasLaunchedBefore = QStringLiteral("hasLaunchedBefore");
/// Boolean, false when absent.
inline const QString hasSeenFirstRun = QStringLiteral("hasSeenFirstRun");
/// Boolean, false when absent; once written it is never cleared.
inline const QString hasShownProfilePromptThisSession = QStringLiteral("hasShownProfilePromptThisSession");
/// Boolean, false when absent.
inline const QString autoOpenLastDocument = QStringLiteral("autoOpenLastDocument");
/// Number: percent, 50 to 200 in steps of 25; 100 when absent.
inline const QString defaultZoomLevel = QStringLiteral("defaultZoomLevel");
/// Boolean, true when absent.
inline const QString showWispTips = QStringLiteral("showWispTips");

} // namespace quillo::DefaultsKeys
