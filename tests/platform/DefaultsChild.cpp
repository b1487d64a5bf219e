// SPDX-License-Identifier: AGPL-3.0-or-later
#include "platform/UserDefaults.h"
#include "support/StartSignal.h"

#include <QCoreApplication>

// Another process with the same defaults:
//   defaults_child PATH KEY VALUE
// It reads the key, and when it is told to start it sets the key.
int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    const quillo::StartSignal start;
    quillo::UserDefaults defaults(arguments.at(1));
    const bool isKnown = defaults.string(arguments.at(2)).has_value();
    start.wait();
    defaults.setString(arguments.at(2), arguments.at(3));
    return isKnown && defaults.synchronize() ? 0 : 1;
}
