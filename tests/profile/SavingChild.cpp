// SPDX-License-Identifier: AGPL-3.0-or-later
#include "platform/Console.h"
#include "platform/UserDefaults.h"
#include "profile/UserProfileService.h"

#include <QCoreApplication>

#include <chrono>
#include <thread>

using namespace quillo;

namespace {

constexpr std::chrono::milliseconds betweenKeystrokes{2};
constexpr qsizetype signatureSize = 20'000;

// Saves one profile after another, each of one kind of byte throughout, and says the number of each once it
// is on disk.
[[noreturn]] void saveForEver(UserProfileService& service)
{
    for (qint64 number = service.profile().firstName.toLongLong() + 1;; ++number) {
        UserProfile profile;
        profile.firstName = QString::number(number);
        profile.jobTitle = profile.firstName.repeated(100);
        profile.signatureImageData = QByteArray(signatureSize, static_cast<char>(number));
        service.setProfile(profile);
        if (UserDefaults::standard().synchronize())
            printLine(profile.firstName);
    }
}

// Types one letter after another into a field, and says how many there are.
[[noreturn]] void typeForEver(UserProfileService& service)
{
    while (true) {
        UserProfile profile = service.profile();
        profile.firstName += QChar(static_cast<char16_t>(u'a' + profile.firstName.size() % 26));
        service.setProfile(profile);
        printLine(QString::number(profile.firstName.size()));
        std::this_thread::sleep_for(betweenKeystrokes);
    }
}

} // namespace

// A program that changes the user's profile until it is killed.
//   profile_saving_child save|type
// The place of the store comes from the environment.
int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    UserProfileService& service = UserProfileService::shared();
    if (QCoreApplication::arguments().at(1) == QStringLiteral("save"))
        saveForEver(service);
    typeForEver(service);
}
