// SPDX-License-Identifier: AGPL-3.0-or-later
#include "platform/BundleInfo.h"

#include "support/Printing.h"

#include <gtest/gtest.h>

namespace quillo {
namespace {

TEST(BundleInfoTest, KnowsVersionAndBuild)
{
    EXPECT_EQ(BundleInfo::informationValue(u"CFBundleShortVersionString"), QStringLiteral("1.0.0"));
    EXPECT_EQ(BundleInfo::informationValue(u"CFBundleVersion"), QStringLiteral("1"));
}

TEST(BundleInfoTest, HasNoValueForOtherKeys)
{
    EXPECT_EQ(BundleInfo::informationValue(u"CFBundleIdentifierX"), std::nullopt);
}

} // namespace
} // namespace quillo
