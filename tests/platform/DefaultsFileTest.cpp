// SPDX-License-Identifier: AGPL-3.0-or-later
#include "platform/DefaultsFile.h"

#include "support/Printing.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <csignal>
#include <sys/resource.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace quillo {
namespace {

constexpr QFile::Permissions everybody = QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner |
                                         QFile::ReadGroup | QFile::ExeGroup | QFile::ReadOther |
                                         QFile::ExeOther;

DefaultsChanges change(const QString& key, const QString& value)
{
    return {{key, IniValue(value)}};
}

int modeOf(const QString& path)
{
    struct stat status = {};
    return ::stat(QFile::encodeName(path).constData(), &status) == 0 ? static_cast<int>(status.st_mode & 0777)
                                                                     : -1;
}

QByteArray contentOf(const QString& path)
{
    QFile file(path);
    return file.open(QFile::ReadOnly) ? file.readAll() : QByteArray("no file");
}

class DefaultsFileTest : public testing::Test
{
protected:
    QString folder() const { return m_folder.path(); }
    QString path() const { return m_folder.filePath(QStringLiteral("Quillo/Quillo.conf")); }

    void store(const QByteArray& text) const
    {
        ASSERT_TRUE(QDir(folder()).mkpath(QStringLiteral("Quillo")));
        QFile file(path());
        ASSERT_TRUE(file.open(QFile::WriteOnly));
        file.write(text);
    }

    static const inline QString key = QStringLiteral("key");
    static const inline QString value = QStringLiteral("value");
    const IniValues m_expected{{key, value}};

private:
    QTemporaryDir m_folder;
};

TEST_F(DefaultsFileTest, MakesItsFolderAndIsReadableByItsOwnerOnly)
{
    const mode_t mask = ::umask(0);
    const bool applied = DefaultsFile(path()).apply(change(key, value)).has_value();
    ::umask(mask);
    ASSERT_TRUE(applied);
    EXPECT_EQ(DefaultsFile(path()).read(), m_expected);
    EXPECT_EQ(modeOf(folder() + QStringLiteral("/Quillo")), 0700);
    for (const QFileInfo& file : QDir(folder() + QStringLiteral("/Quillo")).entryInfoList(QDir::Files))
        EXPECT_EQ(modeOf(file.filePath()), 0600) << file.fileName().toStdString();
}

TEST_F(DefaultsFileTest, TakesAwayOthersPermissionToReadIt)
{
    store("[General]\nkey=value\n");
    ASSERT_TRUE(QFile::setPermissions(path(), everybody));
    EXPECT_EQ(DefaultsFile(path()).read(), m_expected);
    EXPECT_EQ(modeOf(path()), 0600);
}

TEST_F(DefaultsFileTest, WritesOverWhatAKilledProcessLeft)
{
    store("[General]\nother=1\n");
    QFile left(path() + QStringLiteral(".new"));
    ASSERT_TRUE(left.open(QFile::WriteOnly));
    left.write("half of a fi");
    left.close();
    ASSERT_TRUE(left.setPermissions(everybody));
    EXPECT_TRUE(DefaultsFile(path()).apply(change(key, value)));
    EXPECT_FALSE(left.exists());
    EXPECT_EQ(DefaultsFile(path()).read().size(), 2U);
    EXPECT_EQ(modeOf(path()), 0600);
}

TEST_F(DefaultsFileTest, KeepsEveryDamagedFileUnderANameOfItsOwn)
{
    for (const QByteArray& damage : {QByteArray("first"), QByteArray("second")}) {
        store(damage);
        EXPECT_EQ(DefaultsFile(path()).read(), IniValues());
        EXPECT_EQ(contentOf(path()), damage) << "reading must leave the file where it is";
        EXPECT_TRUE(DefaultsFile(path()).apply(change(key, value)));
        EXPECT_EQ(DefaultsFile(path()).read(), m_expected);
    }
    EXPECT_EQ(contentOf(path() + QStringLiteral(".damaged")), "first");
    EXPECT_EQ(contentOf(path() + QStringLiteral(".damaged-2")), "second");
}

TEST_F(DefaultsFileTest, PutsAFolderOfItsNameAside)
{
    ASSERT_TRUE(QDir(folder()).mkpath(QStringLiteral("Quillo/Quillo.conf/inside")));
    EXPECT_EQ(DefaultsFile(path()).read(), IniValues());
    EXPECT_TRUE(DefaultsFile(path()).apply(change(key, value)));
    EXPECT_EQ(DefaultsFile(path()).read(), m_expected);
    EXPECT_TRUE(QFileInfo(path() + QStringLiteral(".damaged/inside")).isDir());
}

TEST_F(DefaultsFileTest, DoesNotWaitForAPipe)
{
    ASSERT_TRUE(QDir(folder()).mkpath(QStringLiteral("Quillo")));
    ASSERT_EQ(::mkfifo(QFile::encodeName(path()).constData(), 0600), 0);
    EXPECT_EQ(DefaultsFile(path()).read(), IniValues());
    EXPECT_TRUE(DefaultsFile(path()).apply(change(key, value)));
    EXPECT_EQ(DefaultsFile(path()).read(), m_expected);
}

TEST_F(DefaultsFileTest, WritesBehindALink)
{
    const QString target = folder() + QStringLiteral("/elsewhere.conf");
    ASSERT_TRUE(QDir(folder()).mkpath(QStringLiteral("Quillo")));
    QFile file(target);
    ASSERT_TRUE(file.open(QFile::WriteOnly));
    file.close();
    ASSERT_TRUE(QFile::link(target, path()));
    EXPECT_TRUE(DefaultsFile(path()).apply(change(key, value)));
    EXPECT_TRUE(QFileInfo(path()).isSymLink());
    EXPECT_EQ(DefaultsFile(target).read(), m_expected);
}

TEST_F(DefaultsFileTest, CannotBeWrittenBelowAFile)
{
    QFile file(folder() + QStringLiteral("/Quillo"));
    ASSERT_TRUE(file.open(QFile::WriteOnly));
    EXPECT_FALSE(DefaultsFile(path()).apply(change(key, value)));
    EXPECT_EQ(DefaultsFile(path()).read(), IniValues());
}

TEST_F(DefaultsFileTest, LeavesTheOldFileInAReadOnlyFolder)
{
    store("[General]\nother=1\n");
    const QString inside = folder() + QStringLiteral("/Quillo");
    // To root no folder is read-only, so step down for a moment.
    const bool root = ::geteuid() == 0;
    ASSERT_TRUE(QFile::setPermissions(folder(), everybody));
    ASSERT_TRUE(QFile::setPermissions(
        inside, QFile::ReadOwner | QFile::ExeOwner | QFile::ReadOther | QFile::ExeOther));
    ASSERT_TRUE(!root || ::seteuid(65534) == 0);
    const bool applied = DefaultsFile(path()).apply(change(key, value)).has_value();
    ASSERT_TRUE(!root || ::seteuid(0) == 0);
    ASSERT_TRUE(QFile::setPermissions(inside, everybody));
    EXPECT_FALSE(applied);
    EXPECT_EQ(contentOf(path()), "[General]\nother=1\n");
}

TEST_F(DefaultsFileTest, LeavesTheOldFileOnAFullDisk)
{
    store("[General]\nother=1\n");
    // A limit on the size of files fails a write as a full disk does: half-way.
    rlimit old = {};
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &old), 0);
    const auto oldHandler = std::signal(SIGXFSZ, SIG_IGN);
    rlimit small = old;
    small.rlim_cur = 4096;
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &small), 0);
    const bool applied = DefaultsFile(path()).apply({{key, IniValue(QByteArray(100'000, 'x'))}}).has_value();
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &old), 0);
    std::signal(SIGXFSZ, oldHandler);
    EXPECT_FALSE(applied);
    EXPECT_EQ(contentOf(path()), "[General]\nother=1\n");
    EXPECT_FALSE(QFileInfo::exists(path() + QStringLiteral(".new")));
}

TEST_F(DefaultsFileTest, LosesNothingOfWritersThatMeet)
{
    constexpr int writers = 8;
    constexpr int keysEach = 20;
    std::vector<std::thread> threads;
    threads.reserve(writers);
    for (int writer = 0; writer < writers; ++writer) {
        threads.emplace_back([this, writer] {
            // Every DefaultsFile opens its lock by itself, as another process would.
            const DefaultsFile file(path());
            for (int i = 0; i < keysEach; ++i)
                file.apply(change(QStringLiteral("%1.%2").arg(writer).arg(i), value));
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(DefaultsFile(path()).read().size(), static_cast<std::size_t>(writers * keysEach));
}

TEST_F(DefaultsFileTest, ReadsBackTwentyMegabytes)
{
    const QByteArray bytes(20'000'000, '"');
    ASSERT_TRUE(DefaultsFile(path()).apply({{key, IniValue(bytes)}}));
    EXPECT_TRUE(DefaultsFile(path()).read() == (IniValues{{key, bytes}}));
}

} // namespace
} // namespace quillo
