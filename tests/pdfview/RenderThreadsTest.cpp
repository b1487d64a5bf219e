// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdfview/RenderThreads.h"

#include <gtest/gtest.h>

#include <atomic>
#include <future>

namespace pdf {
namespace {

using namespace std::chrono_literals;

TEST(RenderThreadsTest, RunsEveryJob)
{
    RenderThreads threads;
    std::atomic<int> done = 0;
    for (int i = 0; i < 1000; ++i)
        threads.start([&] { ++done; });
    EXPECT_TRUE(threads.waitUntilIdle(60s));
    EXPECT_EQ(done, 1000);
}

TEST(RenderThreadsTest, RunsTwoJobsAtOnce)
{
    RenderThreads threads;
    ASSERT_GE(threads.count(), 2);
    std::promise<void> first;
    std::promise<void> second;
    threads.start([&] {
        first.set_value();
        second.get_future().wait();
    });
    threads.start([&] {
        first.get_future().wait();
        second.set_value();
    });
    EXPECT_TRUE(threads.waitUntilIdle(60s));
}

TEST(RenderThreadsTest, SaysWhenItIsNotIdleInTime)
{
    RenderThreads threads;
    std::promise<void> gate;
    threads.start([opened = gate.get_future().share()] { opened.wait(); });
    EXPECT_FALSE(threads.waitUntilIdle(1ms));
    gate.set_value();
    EXPECT_TRUE(threads.waitUntilIdle(60s));
}

} // namespace
} // namespace pdf
