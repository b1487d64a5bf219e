// SPDX-License-Identifier: AGPL-3.0-or-later
#include "document/PageText.h"

#include <gtest/gtest.h>

namespace quillo {
namespace {

TEST(PageTextTest, TwoOfTheSameContentHaveDifferentIdentities)
{
    const PageText first(3, QStringLiteral("text"), false, std::nullopt);
    const PageText second(3, QStringLiteral("text"), false, std::nullopt);

    EXPECT_FALSE(first.id.isNull());
    EXPECT_NE(first.id, second.id);
}

TEST(PageTextTest, ACopyKeepsTheIdentity)
{
    const PageText original(0, QString(), true, std::nullopt);
    const PageText copy =
        original; // NOLINT(performance-unnecessary-copy-initialization): the copy is the test
    EXPECT_EQ(copy.id, original.id);
}

TEST(PageTextTest, AbsentAndEmptyBoxesAreDifferentThings)
{
    const PageText absent(0, QString(), false, std::nullopt);
    const PageText empty(0, QStringLiteral("text"), false, std::vector<TextBoundingBox>{});

    EXPECT_FALSE(absent.boundingBoxes);
    ASSERT_TRUE(empty.boundingBoxes);
    EXPECT_TRUE(empty.boundingBoxes->empty());
}

} // namespace
} // namespace quillo
