// SPDX-License-Identifier: AGPL-3.0-or-later
#include "platform/WebAddresses.h"

#include "support/Printing.h"

#include <gtest/gtest.h>

#include <QUrl>

namespace quillo {
namespace {

TEST(WebAddressesTest, SendsEventsOverHttpsToTheBuildsEndpoint)
{
    const QUrl url(WebAddresses::collectionEndpoint());
    EXPECT_EQ(url.scheme(), QStringLiteral("https"));
    EXPECT_EQ(url.path(), QStringLiteral("/events"));
}

TEST(WebAddressesTest, LetsTheEnvironmentNameAnotherEndpoint)
{
    const QString usual = WebAddresses::collectionEndpoint();
    qputenv("QUILLO_ANALYTICS_ENDPOINT", "https://localhost:8443/events");
    const QString other = WebAddresses::collectionEndpoint();
    qunsetenv("QUILLO_ANALYTICS_ENDPOINT");
    EXPECT_EQ(other, QStringLiteral("https://localhost:8443/events"));
    EXPECT_EQ(WebAddresses::collectionEndpoint(), usual);
}

} // namespace
} // namespace quillo
