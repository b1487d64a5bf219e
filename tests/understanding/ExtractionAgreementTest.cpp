// SPDX-License-Identifier: AGPL-3.0-or-later
#include "understanding/InformationExtraction.h"

#include "understanding/ExtractionComparison.h"
#include "understanding/ExtractionPieces.h"
#include "understanding/ExtractionReference.h"

#include <gtest/gtest.h>

#include <random>

namespace quillo {
namespace {

TEST(ExtractionAgreementTest, AgreesWithTheReferenceOnTextsAssembledFromPiecesOfPatterns)
{
    std::mt19937 random(3);
    const QStringList& pieces = extractionPieces();
    std::size_t items = 0;
    for (int i = 0; i < 100'000; ++i) {
        QString text;
        const std::size_t count = 1 + random() % 24;
        for (std::size_t piece = 0; piece < count; ++piece)
            text += pieces[static_cast<qsizetype>(random() % static_cast<std::size_t>(pieces.size()))];
        const auto expected = reference::extractItems(text, 7);
        ASSERT_EQ(differenceOf(extractItems(text, 7), expected), "") << "in: " << printable(text);
        items += expected.size();
    }
    EXPECT_GT(items, 50'000U);
}

TEST(ExtractionAgreementTest, AgreesWithTheReferenceOnRandomUnits)
{
    std::mt19937 random(5);
    // Short texts of few characters meet every combination of two and three.
    const QString alphabet =
        QStringLiteral("14/-., $@:#()+\nUSDazſK٣\U0001D7CE") + QChar(0xD835) + QChar(0xDFCE);
    for (int i = 0; i < 200'000; ++i) {
        QString text;
        const std::size_t count = 1 + random() % 32;
        for (std::size_t unit = 0; unit < count; ++unit)
            text += alphabet[static_cast<qsizetype>(random() % static_cast<std::size_t>(alphabet.size()))];
        ASSERT_EQ(differenceOf(extractItems(text, 0), reference::extractItems(text, 0)), "")
            << "in: " << printable(text);
    }
}

TEST(ExtractionAgreementTest, GivesTheSameItemsKindByKind)
{
    std::mt19937 random(7);
    const QStringList& pieces = extractionPieces();
    for (int i = 0; i < 2000; ++i) {
        QString text;
        for (int piece = 0; piece < 30; ++piece)
            text += pieces[static_cast<qsizetype>(random() % static_cast<std::size_t>(pieces.size()))];
        std::vector<ExtractedItem> byKind;
        for (const reference::Kind& kind : reference::kinds()) {
            for (ExtractedItem& item : extractItems(kind.type, text, 1))
                byKind.push_back(std::move(item));
        }
        ASSERT_EQ(differenceOf(extractItems(text, 1), byKind), "") << "in: " << printable(text);
    }
}

} // namespace
} // namespace quillo
