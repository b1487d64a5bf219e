// SPDX-License-Identifier: AGPL-3.0-or-later
#include "platform/DefaultsKeys.h"
#include "platform/UserDefaults.h"
#include "support/ChildProcess.h"
#include "support/Printing.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QTemporaryDir>

#include <array>
#include <csignal>

namespace quillo {
namespace {

TEST(DeviceIDTest, IsTheSameForProcessesThatStartAtOnceForTheFirstTime)
{
    const QString program =
        QCoreApplication::applicationDirPath() + QStringLiteral("/analytics_device_child");
    for (int round = 0; round < 20; ++round) {
        const QTemporaryDir folder;
        const QStringList arguments{folder.filePath(QStringLiteral("Quillo/Quillo.conf"))};
        std::array<ChildProcess, 2> children{
            ChildProcess(program, arguments), ChildProcess(program, arguments)};
        for (ChildProcess& child : children)
            ASSERT_EQ(child.readLine(), "ready");
        for (const ChildProcess& child : children)
            child.sendSignal(SIGUSR1);
        const auto first = children[0].readLine();
        const auto second = children[1].readLine();
        ASSERT_TRUE(first);
        ASSERT_EQ(first->size(), 36) << first->constData();
        ASSERT_EQ(first, second) << "round " << round;
        for (ChildProcess& child : children)
            ASSERT_EQ(child.waitForEnd(), 0);
        ASSERT_EQ(
            UserDefaults(arguments.first()).string(DefaultsKeys::deviceID), QString::fromLatin1(*first));
    }
}

} // namespace
} // namespace quillo
