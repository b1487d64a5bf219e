// SPDX-License-Identifier: AGPL-3.0-or-later
#include "analytics/NetworkModule.h"

#include "support/PDFWriter.h"
#include "support/Printing.h"

#include <gtest/gtest.h>

namespace quillo {
namespace {

/// How a request over the module of the folder ends, if it ends at once.
std::optional<AnalyticsResponse> responseOf(const QString& folder)
{
    NetworkModule module(folder);
    std::optional<AnalyticsResponse> result;
    module.post({}, [&](const AnalyticsResponse& response) { result = response; });
    return result;
}

TEST(NetworkModuleTest, FailsTheRequestWhereThereIsNoModule)
{
    const TestFolder folder;
    const auto response = responseOf(folder.path(QStringLiteral("nothing here")));
    ASSERT_TRUE(response) << "the request ends at once";
    ASSERT_TRUE(response->error);
    EXPECT_FALSE(response->error->isEmpty());
    EXPECT_FALSE(response->httpStatus);
}

TEST(NetworkModuleTest, FailsTheRequestWhereTheModuleIsNone)
{
    const TestFolder folder;
    folder.write(QStringLiteral("quillo-network.so"), "no library");
    const auto response = responseOf(folder.path(QString()));
    ASSERT_TRUE(response);
    EXPECT_TRUE(response->error);
}

} // namespace
} // namespace quillo
