// SPDX-License-Identifier: AGPL-3.0-or-later
#include "platform/UserDefaults.h"
#include "profile/UserProfileJson.h"
#include "profile/UserProfileService.h"
#include "support/ChildProcess.h"
#include "support/Printing.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDir>
#include <QTemporaryDir>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <memory>
#include <random>
#include <thread>

namespace quillo {
namespace {

constexpr int defaultKills = 60;
// A save takes about this long, so that a kill falls into any part of it.
constexpr int longestSave = 4'000;

class KilledProcessTest : public testing::Test
{
protected:
    static int kills()
    {
        const int asked = qEnvironmentVariableIntValue("QUILLO_TEST_KILLS");
        return asked > 0 ? asked : defaultKills;
    }

    QString path() const { return m_folder.filePath(QStringLiteral("Quillo/Quillo.conf")); }

    std::unique_ptr<ChildProcess> start(const char* mode) const
    {
        return std::make_unique<ChildProcess>(
            QCoreApplication::applicationDirPath() + QStringLiteral("/profile_saving_child"),
            QStringList{QString::fromLatin1(mode)},
            ChildProcess::Environment{{QStringLiteral("XDG_CONFIG_HOME"), m_folder.path()}});
    }

    /// Waits for the number that the child says next, 0 when it says none.
    static qint64 nextNumber(ChildProcess& child)
    {
        return child.readLine().value_or(QByteArray()).toLongLong();
    }

    /// Kills the child and gives the number that it said last.
    static qint64 kill(ChildProcess& child, qint64 said)
    {
        child.sendSignal(SIGKILL);
        EXPECT_EQ(child.waitForEnd(), SIGKILL);
        while (const auto line = child.readLine())
            said = line->toLongLong();
        return said;
    }

    UserProfile storedProfile() const
    {
        const UserDefaults defaults(path());
        return decodeUserProfile(defaults.bytes(UserProfileService::profileKey).value_or(QByteArray()));
    }

    QStringList files() const
    {
        return QDir(m_folder.filePath(QStringLiteral("Quillo"))).entryList(QDir::Files);
    }

    QTemporaryDir m_folder;
    std::mt19937 m_random{1};
};

TEST_F(KilledProcessTest, LeavesTheOldOrTheNewProfileAndNeverHalfOfOne)
{
    int oldOnes = 0;
    int newOnes = 0;
    int leftovers = 0;
    for (int round = 0; round < kills(); ++round) {
        const auto child = start("save");
        const qint64 confirmed = nextNumber(*child);
        ASSERT_GT(confirmed, 0) << "the child does not save";
        std::this_thread::sleep_for(std::chrono::microseconds(static_cast<int>(m_random() % longestSave)));
        const qint64 said = kill(*child, confirmed);

        const UserProfile profile = storedProfile();
        const qint64 stored = profile.firstName.toLongLong();
        ASSERT_TRUE(stored == said || stored == said + 1) << "said " << said << ", stored " << stored;
        ASSERT_EQ(profile.jobTitle, profile.firstName.repeated(100));
        ASSERT_EQ(profile.signatureImageData, QByteArray(20'000, static_cast<char>(stored)));
        (stored == said ? oldOnes : newOnes) += 1;
        leftovers += files().contains(QStringLiteral("Quillo.conf.new")) ? 1 : 0;
    }
    for (const QString& file : files())
        EXPECT_FALSE(file.contains(QStringLiteral("damaged"))) << file.toStdString();
    std::printf(
        "%d kills: %d left the save that was confirmed last, %d the one after it; %d left an unfinished "
        "new file beside it\n",
        kills(), oldOnes, newOnes, leftovers);
    EXPECT_EQ(oldOnes + newOnes, kills());
}

TEST_F(KilledProcessTest, CostsNoMoreThanTheLastKeystrokes)
{
    const auto child = start("type");
    qint64 typed = nextNumber(*child);
    // A letter that was typed before the file was last replaced is in it.
    while (typed > 0 && !QFile::exists(path()))
        typed = nextNumber(*child);
    const qint64 atFirstSave = typed;
    while (typed > 0 && storedProfile().firstName.size() <= atFirstSave)
        typed = nextNumber(*child);
    typed = kill(*child, typed);
    const QString stored = storedProfile().firstName;
    EXPECT_GT(stored.size(), atFirstSave);
    EXPECT_LE(stored.size(), typed + 1);
    for (qsizetype i = 0; i < stored.size(); ++i)
        ASSERT_EQ(stored[i], QChar(static_cast<char16_t>(u'a' + i % 26)));
}

} // namespace
} // namespace quillo
