// SPDX-License-Identifier: AGPL-3.0-or-later
#include "analytics/EventType.h"

#include "json/RawValues.h"

#include <algorithm>

namespace quillo {
namespace {

constexpr RawValueTable<EventType, 19> eventTypes{{
    {EventType::appLaunch, u"appLaunch"},
    {EventType::appTerminate, u"appTerminate"},
    {EventType::heartbeat, u"heartbeat"},
    {EventType::documentOpened, u"documentOpened"},
    {EventType::documentSaved, u"documentSaved"},
    {EventType::documentSigned, u"documentSigned"},
    {EventType::textExtractionComplete, u"textExtractionComplete"},
    {EventType::ocrComplete, u"ocrComplete"},
    {EventType::classificationComplete, u"classificationComplete"},
    {EventType::actionDetectionComplete, u"actionDetectionComplete"},
    {EventType::extractionComplete, u"extractionComplete"},
    {EventType::explanationComplete, u"explanationComplete"},
    {EventType::featureUsed, u"featureUsed"},
    {EventType::pageNavigation, u"pageNavigation"},
    {EventType::zoom, u"zoom"},
    {EventType::search, u"search"},
    {EventType::print, u"print"},
    {EventType::pageRotation, u"pageRotation"},
    {EventType::error, u"error"},
}};

} // namespace

const std::array<EventType, 19>& allEventTypes()
{
    static const auto types = [] {
        std::array<EventType, 19> cases{};
        std::transform(eventTypes.begin(), eventTypes.end(), cases.begin(), [](const auto& entry) {
            return entry.first;
        });
        return cases;
    }();
    return types;
}

QString rawValue(EventType type)
{
    return nameIn(eventTypes, type);
}

std::optional<EventType> eventTypeFromRawValue(QStringView name)
{
    return caseIn(eventTypes, name);
}

} // namespace quillo
