// SPDX-License-Identifier: AGPL-3.0-or-later
#include "platform/Actor.h"

#include <gtest/gtest.h>

#include <QObject>
#include <QSemaphore>
#include <QTest>
#include <QThread>

#include <algorithm>
#include <atomic>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace quillo {
namespace {

TEST(ActorTest, RunsJobsOneAtATimeInTheirOrder)
{
    std::vector<int> order;
    std::atomic<int> running = 0;
    std::atomic<bool> overlapped = false;
    {
        Actor actor(QStringLiteral("test"));
        for (int i = 0; i < 200; ++i) {
            actor.run([&, i] {
                overlapped = overlapped || running.fetch_add(1) != 0;
                order.push_back(i);
                running.fetch_sub(1);
            });
        }
    }
    ASSERT_EQ(order.size(), 200U);
    EXPECT_TRUE(std::is_sorted(order.begin(), order.end()));
    EXPECT_FALSE(overlapped);
}

TEST(ActorTest, WorksOffTheCallingThread)
{
    Actor actor(QStringLiteral("test"));
    QFuture<QThread*> future = actor.run([] { return QThread::currentThread(); });
    EXPECT_NE(future.result(), QThread::currentThread());
}

TEST(ActorTest, ComesBackToTheThreadOfTheContext)
{
    Actor actor(QStringLiteral("test"));
    QObject context;
    QThread* continuedOn = nullptr;
    actor.run([] { return 42; }).then(&context, [&](int) { continuedOn = QThread::currentThread(); });
    EXPECT_TRUE(QTest::qWaitFor([&] { return continuedOn != nullptr; }));
    EXPECT_EQ(continuedOn, QThread::currentThread());
}

TEST(ActorTest, DropsTheContinuationOfADeadContext)
{
    Actor actor(QStringLiteral("test"));
    bool continued = false;
    auto context = std::make_unique<QObject>();
    QSemaphore isDead;
    QFuture<int> future = actor.run([&isDead] {
        isDead.acquire();
        return 1;
    });
    future.then(context.get(), [&](int) { continued = true; });
    context.reset();
    isDead.release();
    future.waitForFinished();
    QTest::qWait(20);
    EXPECT_FALSE(continued);
}

TEST(ActorTest, HandsAnExceptionToTheCaller)
{
    Actor actor(QStringLiteral("test"));
    QFuture<int> future = actor.run([]() -> int { throw std::runtime_error("no"); });
    std::string message;
    try {
        future.result();
    } catch (const std::runtime_error& error) {
        message = error.what();
    }
    EXPECT_EQ(message, "no");
}

} // namespace
} // namespace quillo
