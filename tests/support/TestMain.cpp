// SPDX-License-Identifier: AGPL-3.0-or-later
#include <gtest/gtest.h>

#include <QApplication>
#include <QStandardPaths>

// Every test program runs inside an application of the Qt kind, without a screen and with settings
// kept away from the user's own.
int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QStandardPaths::setTestModeEnabled(true);
    QApplication application(argc, argv);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
