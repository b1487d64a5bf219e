// SPDX-License-Identifier: AGPL-3.0-or-later
#include "profile/UserProfile.h"

#include "support/Printing.h"

#include <gtest/gtest.h>

namespace quillo {
namespace {

UserProfile named(const QString& firstName, const QString& lastName)
{
    UserProfile profile;
    profile.firstName = firstName;
    profile.lastName = lastName;
    return profile;
}

TEST(UserProfileTest, IsEmptyAndIncompleteAtFirst)
{
    const UserProfile profile;
    EXPECT_EQ(profile.fullName(), QString());
    EXPECT_EQ(profile.initials(), QString());
    EXPECT_FALSE(profile.isProfileComplete());
}

TEST(UserProfileTest, JoinsTheNamesThatThereAreByOneSpace)
{
    EXPECT_EQ(named(QStringLiteral("anna"), {}).fullName(), QStringLiteral("anna"));
    EXPECT_EQ(named({}, QStringLiteral("berg")).fullName(), QStringLiteral("berg"));
    EXPECT_EQ(named(QStringLiteral("anna"), QStringLiteral("berg")).fullName(), QStringLiteral("anna berg"));
}

TEST(UserProfileTest, TrimsNoName)
{
    EXPECT_EQ(named(QStringLiteral(" "), QStringLiteral("berg ")).fullName(), QStringLiteral("  berg "));
    EXPECT_EQ(named(QStringLiteral(" anna"), QStringLiteral("berg")).initials(), QStringLiteral(" B"));
}

TEST(UserProfileTest, PrefersTheNameForSignatures)
{
    UserProfile profile = named(QStringLiteral("anna"), QStringLiteral("berg"));
    profile.signatureFullName = QStringLiteral(" ");
    EXPECT_EQ(profile.fullName(), QStringLiteral(" "));
    profile.signatureFullName = QStringLiteral("Dr. A. Berg");
    EXPECT_EQ(profile.fullName(), QStringLiteral("Dr. A. Berg"));
    EXPECT_EQ(profile.initials(), QStringLiteral("AB")) << "initials come from the two names alone";
}

TEST(UserProfileTest, IsCompleteWithFirstAndLastName)
{
    EXPECT_FALSE(named(QStringLiteral("anna"), {}).isProfileComplete());
    EXPECT_FALSE(named({}, QStringLiteral("berg")).isProfileComplete());
    EXPECT_TRUE(named(QStringLiteral(" "), QStringLiteral("berg")).isProfileComplete());
}

TEST(UserProfileTest, TakesInitialsByUserPerceivedCharacter)
{
    EXPECT_EQ(named(QStringLiteral("anna"), {}).initials(), QStringLiteral("A"));
    EXPECT_EQ(named(QStringLiteral("anna"), QStringLiteral("berg")).initials(), QStringLiteral("AB"));
    EXPECT_EQ(
        named(QStringLiteral("e\u0301mile"), QStringLiteral("o\u0323\u0302x")).initials(),
        QStringLiteral("E\u0301O\u0323\u0302"));
    EXPECT_EQ(
        named(QStringLiteral("\U0001F1E9\U0001F1EA\U0001F1EB\U0001F1F7"), QStringLiteral("b")).initials(),
        QStringLiteral("\U0001F1E9\U0001F1EAB"));
    EXPECT_EQ(
        named(QStringLiteral("\U0001F468\u200D\U0001F469\u200D\U0001F467x"), {}).initials(),
        QStringLiteral("\U0001F468\u200D\U0001F469\u200D\U0001F467"));
    EXPECT_EQ(named(QStringLiteral("\U00010428x"), {}).initials(), QStringLiteral("\U00010400"));
}

TEST(UserProfileTest, UpperCasesInitialsInFullUnicode)
{
    EXPECT_EQ(named(QStringLiteral("\u00dfa"), QStringLiteral("\ufb01x")).initials(), QStringLiteral("SSFI"));
    EXPECT_EQ(
        named(QStringLiteral("\u03c9"), QStringLiteral("\u0436")).initials(), QStringLiteral("\u03a9\u0416"));
    EXPECT_EQ(named(QStringLiteral("i"), QStringLiteral("\u6797")).initials(), QStringLiteral("I\u6797"));
}

} // namespace
} // namespace quillo
