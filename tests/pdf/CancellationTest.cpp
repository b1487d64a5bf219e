// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/Cancellation.h"

#include <gtest/gtest.h>

#include <chrono>

namespace pdf {
namespace {

using namespace std::chrono_literals;

TEST(CancellationTest, IsCancelledOnlyAfterSomebodyCancelsIt)
{
    const Cancellation cancellation;
    EXPECT_FALSE(cancellation.isCancelled());
    cancellation.cancel();
    EXPECT_TRUE(cancellation.isCancelled());
}

TEST(CancellationTest, CopiesShareTheFlag)
{
    const Cancellation cancellation;
    // NOLINTNEXTLINE(performance-unnecessary-copy-initialization): the copy is the test
    const Cancellation copy = cancellation;
    copy.cancel();
    EXPECT_TRUE(cancellation.isCancelled());
}

TEST(CancellationTest, IsCancelledWhenItsTimeIsOver)
{
    EXPECT_TRUE(Cancellation::after(0ms).isCancelled());
    EXPECT_FALSE(Cancellation::after(1h).isCancelled());
}

} // namespace
} // namespace pdf
