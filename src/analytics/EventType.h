// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringView>

#include <array>
#include <optional>

namespace quillo {

/// What a usage event says has happened.
enum class EventType {
    appLaunch,
    appTerminate,
    heartbeat,
    documentOpened,
    documentSaved,
    documentSigned,
    textExtractionComplete,
    ocrComplete,
    classificationComplete,
    actionDetectionComplete,
    extractionComplete,
    explanationComplete,
    featureUsed,
    pageNavigation,
    zoom,
    search,
    print,
    pageRotation,
    /// Emitted by nothing so far.
    error,
};

/// Every case, in the order of declaration.
const std::array<EventType, 19>& allEventTypes();

/// The name of the case, which is also its name on the wire.
QString rawValue(EventType type);

/// None when the name is not exactly that of a case.
std::optional<EventType> eventTypeFromRawValue(QStringView name);

} // namespace quillo
