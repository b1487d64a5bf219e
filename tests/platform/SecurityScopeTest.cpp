// SPDX-License-Identifier: AGPL-3.0-or-later
#include "platform/SecurityScope.h"

#include <gtest/gtest.h>

namespace quillo {
namespace {

bool hasScope(const char* url)
{
    return startAccessingSecurityScopedResource(QUrl(QString::fromLatin1(url)));
}

TEST(SecurityScopeTest, IsThereForFilesOfTheDocumentPortal)
{
    EXPECT_TRUE(hasScope("file:///run/user/1000/doc/4a3b2c1d/invoice.pdf"));
    EXPECT_TRUE(hasScope("file:///run/flatpak/doc/4a3b2c1d/invoice.pdf"));
}

TEST(SecurityScopeTest, IsNotThereForOtherFiles)
{
    EXPECT_FALSE(hasScope("file:///home/user/doc/invoice.pdf"));
    EXPECT_FALSE(hasScope("file:///home/user/run/user/1000/doc/invoice.pdf"));
    EXPECT_FALSE(hasScope("file:///run/user/1000/doc/../../../etc/invoice.pdf"));
    EXPECT_FALSE(hasScope("https://run/user/1000/doc/invoice.pdf"));
    EXPECT_FALSE(hasScope(""));
}

} // namespace
} // namespace quillo
