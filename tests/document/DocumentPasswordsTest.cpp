// SPDX-License-Identifier: AGPL-3.0-or-later
#include "document/DocumentPasswords.h"

#include "support/Printing.h"

#include <gtest/gtest.h>

namespace quillo {
namespace {

TEST(DocumentPasswordsTest, RemembersThePasswordOfEachPath)
{
    DocumentPasswords passwords;
    passwords.remember(QStringLiteral("/a.pdf"), QStringLiteral("one"));
    passwords.remember(QStringLiteral("/b.pdf"), QStringLiteral("two"));

    EXPECT_EQ(passwords.password(QStringLiteral("/a.pdf")), QStringLiteral("one"));
    EXPECT_EQ(passwords.password(QStringLiteral("/b.pdf")), QStringLiteral("two"));
}

TEST(DocumentPasswordsTest, KnowsNoneForAnotherPath)
{
    DocumentPasswords passwords;
    passwords.remember(QStringLiteral("/a.pdf"), QStringLiteral("one"));

    EXPECT_EQ(passwords.password(QStringLiteral("/a")), std::nullopt);
}

TEST(DocumentPasswordsTest, TheLatestPasswordReplacesTheEarlierOne)
{
    DocumentPasswords passwords;
    passwords.remember(QStringLiteral("/a.pdf"), QStringLiteral("old"));
    passwords.remember(QStringLiteral("/a.pdf"), QString());

    EXPECT_EQ(passwords.password(QStringLiteral("/a.pdf")), QString());
}

} // namespace
} // namespace quillo
