// SPDX-License-Identifier: AGPL-3.0-or-later
#include "understanding/InformationExtraction.h"

#include "understanding/ExtractionComparison.h"
#include "understanding/ExtractionReference.h"
#include "understanding/HostileTexts.h"

#include <gtest/gtest.h>

namespace quillo {
namespace {

using ItemType = ExtractedItem::ItemType;

constexpr qsizetype hugePage = 50'000'000;
// A scan in quadratic time would not come to the end of such a text before the test's time is over.
constexpr qsizetype largePage = 5'000'000;

TEST(ExtractionHostileTest, AgreesWithTheReferenceOnSmallTextsOfEveryHostileShape)
{
    for (const HostileShape& shape : hostileShapes()) {
        const QString text = shape.text(3000);
        EXPECT_EQ(differenceOf(extractItems(text, 0), reference::extractItems(text, 0)), "") << shape.name;
    }
}

TEST(ExtractionHostileTest, ReadsALargePageOfEveryHostileShape)
{
    for (const HostileShape& shape : hostileShapes()) {
        const QString text = shape.text(largePage);
        ASSERT_EQ(text.size(), largePage);
        const auto items = extractItems(text, 0);
        EXPECT_EQ(items.size() > 1000, shape.manyItems) << shape.name << ": " << items.size();
    }
}

TEST(ExtractionHostileTest, FindsAnItemBehindFiftyMillionUnits)
{
    const auto items = extractItems(QString(hugePage, QLatin1Char('a')) + QStringLiteral("$5"), 0);
    ASSERT_EQ(items.size(), 1U);
    EXPECT_EQ(items[0].value, QStringLiteral("$5"));
}

TEST(ExtractionHostileTest, TakesAMatchOfAWholePage)
{
    const QString text = QString(hugePage, QLatin1Char('a')) + QStringLiteral("@b.cc");
    const auto items = extractItems(text, 0);
    ASSERT_EQ(items.size(), 1U);
    EXPECT_TRUE(items[0].value == text);
}

TEST(ExtractionHostileTest, FindsAMillionItems)
{
    const auto items = extractItems(ItemType::amount, QStringLiteral("$1 ").repeated(1'000'000), 0);
    ASSERT_EQ(items.size(), 1'000'000U);
    EXPECT_EQ(items.back().value, QStringLiteral("$1"));
}

TEST(ExtractionHostileTest, TakesHalvesOfPairsNoughtsAndBidirectionalControlsForWhatTheyAre)
{
    const char16_t strange[] = {0xD800, 0xDC00, 0xDC00, 0xD800, 0x0000, 0x202E,
                                0x202D, 0x2066, 0x200F, 0xFFFE, 0xFFFF};
    for (const char16_t unit : strange) {
        const QString one(unit);
        const QString text = one + QStringLiteral("1/2/2024") + one + QStringLiteral("$5") + one +
                             QStringLiteral("a@b.cc") + one + QStringLiteral("12 Main") + one +
                             QStringLiteral("Street 1") + one + QStringLiteral("2 Oak Lane") + one;
        const auto items = extractItems(text, 0);
        EXPECT_EQ(differenceOf(items, reference::extractItems(text, 0)), "") << static_cast<unsigned>(unit);
        EXPECT_EQ(items.size(), 4U) << static_cast<unsigned>(unit);
    }
}

TEST(ExtractionHostileTest, FindsWhatAnEngineOfLimitedStackGivesUpOn)
{
    // ICU alone, with its usual stack limit, ends with an error within these runs and finds no address
    // behind.
    const QString text = QStringLiteral("1") + QString(2'000'000, QLatin1Char(' ')) +
                         QStringLiteral("Main St, ") + QString(2'000'000, QLatin1Char('1')) +
                         QStringLiteral(" Main St, 7 Elm St");
    const auto items = extractItems(ItemType::address, text, 0);
    ASSERT_EQ(items.size(), 3U);
    EXPECT_EQ(items[0].value.size(), 2'000'008);
    EXPECT_EQ(items[1].value.size(), 2'000'008);
    EXPECT_EQ(items[2].value, QStringLiteral("7 Elm St"));
}

} // namespace
} // namespace quillo
