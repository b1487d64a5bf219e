// SPDX-License-Identifier: AGPL-3.0-or-later
#include "analytics/EventType.h"

#include "support/Printing.h"

#include <gtest/gtest.h>

#include <QStringList>

namespace quillo {
namespace {

const QStringList names =
    QStringLiteral("appLaunch appTerminate heartbeat documentOpened documentSaved documentSigned "
                   "textExtractionComplete ocrComplete classificationComplete "
                   "actionDetectionComplete extractionComplete explanationComplete featureUsed "
                   "pageNavigation zoom search print pageRotation error")
        .split(u' ');

TEST(EventTypeTest, HasNineteenCasesInTheirOrder)
{
    ASSERT_EQ(names.size(), 19);
    for (int ordinal = 0; ordinal < names.size(); ++ordinal)
        EXPECT_EQ(rawValue(static_cast<EventType>(ordinal)), names[ordinal]);
}

TEST(EventTypeTest, ListsEveryCaseOnce)
{
    for (std::size_t ordinal = 0; ordinal < allEventTypes().size(); ++ordinal)
        EXPECT_EQ(static_cast<std::size_t>(allEventTypes()[ordinal]), ordinal);
}

TEST(EventTypeTest, FindsACaseByItsExactNameOnly)
{
    for (const EventType type : allEventTypes())
        EXPECT_EQ(eventTypeFromRawValue(rawValue(type)), type);
    EXPECT_EQ(eventTypeFromRawValue(u"applaunch"), std::nullopt);
    EXPECT_EQ(eventTypeFromRawValue(u"zoom "), std::nullopt);
    EXPECT_EQ(eventTypeFromRawValue(u""), std::nullopt);
}

} // namespace
} // namespace quillo
