// SPDX-License-Identifier: AGPL-3.0-or-later
#include "platform/UserDefaults.h"

#include "support/ChildProcess.h"
#include "support/Printing.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QFile>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>
#include <limits>
#include <memory>

namespace quillo {
namespace {

const QString key = QStringLiteral("key");

class UserDefaultsTest : public testing::Test
{
protected:
    QString path() const { return m_folder.filePath(QStringLiteral("Quillo/Quillo.conf")); }

    void store(const QByteArray& text) const
    {
        ASSERT_TRUE(QDir(m_folder.path()).mkpath(QStringLiteral("Quillo")));
        QFile file(path());
        ASSERT_TRUE(file.open(QFile::WriteOnly));
        file.write(text);
    }

    QByteArray content() const
    {
        QFile file(path());
        return file.open(QFile::ReadOnly) ? file.readAll() : QByteArray();
    }

    /// What another process would find.
    std::optional<QString> stored(const QString& name) const { return UserDefaults(path()).string(name); }

    /// Another process: `child PATH KEY VALUE` reads the key, says so and sets it when it gets SIGUSR1.
    const QString child = QCoreApplication::applicationDirPath() + QStringLiteral("/defaults_child");

private:
    QTemporaryDir m_folder;
};

TEST_F(UserDefaultsTest, HasNoValueForAnAbsentKey)
{
    const UserDefaults defaults(path());
    EXPECT_EQ(defaults.boolean(key), std::nullopt);
    EXPECT_EQ(defaults.number(key), std::nullopt);
    EXPECT_EQ(defaults.string(key), std::nullopt);
    EXPECT_EQ(defaults.bytes(key), std::nullopt);
}

TEST_F(UserDefaultsTest, ReadsAtOnceWhatWasSet)
{
    UserDefaults defaults(path());
    defaults.setBoolean(QStringLiteral("on"), true);
    defaults.setBoolean(QStringLiteral("off"), false);
    defaults.setNumber(QStringLiteral("number"), 0.1);
    defaults.setString(QStringLiteral("string"), QStringLiteral("gr\u00fc\u00df"));
    defaults.setBytes(QStringLiteral("bytes"), QByteArray("\x00\xff", 2));
    EXPECT_EQ(defaults.boolean(QStringLiteral("on")), true);
    EXPECT_EQ(defaults.boolean(QStringLiteral("off")), false);
    EXPECT_EQ(defaults.number(QStringLiteral("number")), 0.1);
    EXPECT_EQ(defaults.string(QStringLiteral("string")), QStringLiteral("gr\u00fc\u00df"));
    EXPECT_EQ(defaults.bytes(QStringLiteral("bytes")), QByteArray("\x00\xff", 2));
}

TEST_F(UserDefaultsTest, ReadsTheSameInTheNextProcess)
{
    {
        UserDefaults defaults(path());
        defaults.setBoolean(QStringLiteral("on"), true);
        defaults.setNumber(QStringLiteral("number"), 1.0 / 3);
        defaults.setString(QStringLiteral("string"), QStringLiteral("true story"));
        defaults.setBytes(QStringLiteral("bytes"), QByteArray("{\"a\":\"\\n\"}"));
    }
    const UserDefaults defaults(path());
    EXPECT_EQ(defaults.boolean(QStringLiteral("on")), true);
    EXPECT_EQ(defaults.number(QStringLiteral("number")), 1.0 / 3);
    EXPECT_EQ(defaults.string(QStringLiteral("string")), QStringLiteral("true story"));
    EXPECT_EQ(defaults.bytes(QStringLiteral("bytes")), QByteArray("{\"a\":\"\\n\"}"));
}

TEST_F(UserDefaultsTest, HasNoValueForAMistypedKey)
{
    store("[General]\nword=banana\nbytes=@ByteArray(1)\nlist=1, 2\nnan=nan\n");
    const UserDefaults defaults(path());
    EXPECT_EQ(defaults.boolean(QStringLiteral("word")), std::nullopt);
    EXPECT_EQ(defaults.number(QStringLiteral("word")), std::nullopt);
    EXPECT_EQ(defaults.bytes(QStringLiteral("word")), std::nullopt);
    EXPECT_EQ(defaults.string(QStringLiteral("bytes")), std::nullopt);
    EXPECT_EQ(defaults.boolean(QStringLiteral("bytes")), std::nullopt);
    EXPECT_EQ(defaults.number(QStringLiteral("bytes")), std::nullopt);
    EXPECT_EQ(defaults.string(QStringLiteral("list")), std::nullopt);
    EXPECT_EQ(defaults.number(QStringLiteral("nan")), std::nullopt);
}

TEST_F(UserDefaultsTest, HasNoNumberThatIsNotFinite)
{
    UserDefaults defaults(path());
    defaults.setNumber(key, std::numeric_limits<double>::infinity());
    EXPECT_EQ(defaults.number(key), std::nullopt);
}

TEST_F(UserDefaultsTest, RemovesAKey)
{
    store("[General]\nkey=1\nother=2\n");
    {
        UserDefaults defaults(path());
        defaults.remove(key);
        EXPECT_EQ(defaults.string(key), std::nullopt);
    }
    EXPECT_EQ(stored(key), std::nullopt);
    EXPECT_EQ(stored(QStringLiteral("other")), QStringLiteral("2"));
}

TEST_F(UserDefaultsTest, TellsTheObserversOfTheKeyBeforeTheSetterReturns)
{
    UserDefaults defaults(path());
    QObject context;
    std::vector<std::optional<bool>> seen;
    defaults.addObserver(&context, key, [&] { seen.push_back(defaults.boolean(key)); });
    defaults.setBoolean(QStringLiteral("other"), true);
    defaults.setBoolean(key, true);
    defaults.setBoolean(key, true);
    defaults.setBoolean(key, false);
    defaults.remove(key);
    defaults.remove(key);
    EXPECT_EQ(seen, (std::vector<std::optional<bool>>{true, false, std::nullopt}));
}

TEST_F(UserDefaultsTest, ForgetsObserversWithTheirContext)
{
    UserDefaults defaults(path());
    int calls = 0;
    {
        QObject context;
        defaults.addObserver(&context, key, [&] { ++calls; });
    }
    defaults.setBoolean(key, true);
    EXPECT_EQ(calls, 0);
}

TEST_F(UserDefaultsTest, ReachesTheDiskByItself)
{
    UserDefaults defaults(path());
    defaults.setString(key, QStringLiteral("value"));
    EXPECT_TRUE(QTest::qWaitFor([&] { return stored(key) == QStringLiteral("value"); }));
}

TEST_F(UserDefaultsTest, ReachesTheDiskWhenAskedTo)
{
    UserDefaults defaults(path());
    defaults.setString(key, QStringLiteral("value"));
    EXPECT_TRUE(defaults.synchronize());
    EXPECT_EQ(stored(key), QStringLiteral("value"));
}

TEST_F(UserDefaultsTest, LosesNoKeyThatAnotherProcessWrote)
{
    UserDefaults first(path());
    UserDefaults second(path());
    ASSERT_EQ(first.string(key), std::nullopt);
    ASSERT_EQ(second.string(key), std::nullopt);
    first.setString(QStringLiteral("first"), QStringLiteral("1"));
    first.synchronize();
    second.setString(QStringLiteral("second"), QStringLiteral("2"));
    second.synchronize();
    EXPECT_EQ(stored(QStringLiteral("first")), QStringLiteral("1"));
    EXPECT_EQ(stored(QStringLiteral("second")), QStringLiteral("2"));
}

TEST_F(UserDefaultsTest, RemovesAKeyThatAnotherProcessWrote)
{
    UserDefaults first(path());
    UserDefaults second(path());
    ASSERT_EQ(first.string(key), std::nullopt);
    second.setString(key, QStringLiteral("2"));
    second.synchronize();
    first.remove(key);
    first.synchronize();
    EXPECT_EQ(stored(key), std::nullopt);
}

TEST_F(UserDefaultsTest, SetsAValueInThePlaceOfAnOlderOneOfAnotherProcess)
{
    for (int round = 0; round < 10; ++round) {
        store("[General]\nkey=old\n");
        // Each has read the file before the other one changes it.
        ChildProcess first(child, {path(), key, QStringLiteral("old")});
        ASSERT_EQ(first.readLine(), "ready");
        ChildProcess second(child, {path(), key, QStringLiteral("new")});
        ASSERT_EQ(second.readLine(), "ready");
        second.sendSignal(SIGUSR1);
        ASSERT_EQ(second.waitForEnd(), 0);
        ASSERT_EQ(stored(key), QStringLiteral("new"));
        first.sendSignal(SIGUSR1);
        ASSERT_EQ(first.waitForEnd(), 0);
        ASSERT_EQ(stored(key), QStringLiteral("old")) << "round " << round;
    }
}

TEST_F(UserDefaultsTest, LeavesAFileThatHoldsEverythingAlone)
{
    store("[General]\nkey=value\n");
    const QByteArray before = content();
    UserDefaults defaults(path());
    defaults.setString(key, QStringLiteral("value"));
    EXPECT_TRUE(defaults.synchronize());
    EXPECT_EQ(content(), before) << "not even written in this class's own form";
}

TEST_F(UserDefaultsTest, AgreesOnTheTextThatAnotherProcessWrote)
{
    UserDefaults first(path());
    UserDefaults second(path());
    ASSERT_EQ(first.string(key), std::nullopt);
    ASSERT_EQ(second.string(key), std::nullopt);
    EXPECT_EQ(first.agreedString(key, QStringLiteral("1")).get(), QStringLiteral("1"));
    EXPECT_EQ(second.agreedString(key, QStringLiteral("2")).get(), QStringLiteral("1"));
    EXPECT_EQ(second.string(key), QStringLiteral("1"));
    EXPECT_EQ(second.agreedString(key, QStringLiteral("3")).get(), QStringLiteral("1"));
    EXPECT_EQ(stored(key), QStringLiteral("1"));
}

TEST_F(UserDefaultsTest, ProposesATextInThePlaceOfWhatIsNone)
{
    store("[General]\nkey=@ByteArray(1)\n");
    UserDefaults defaults(path());
    EXPECT_EQ(defaults.agreedString(key, QStringLiteral("1")).get(), QStringLiteral("1"));
    EXPECT_EQ(stored(key), QStringLiteral("1"));
}

TEST_F(UserDefaultsTest, SetsAValueInThePlaceOfAProposedOne)
{
    UserDefaults defaults(path());
    int calls = 0;
    defaults.addObserver(&defaults, key, [&] { ++calls; });
    defaults.agreedString(key, QStringLiteral("proposed"));
    defaults.setString(key, QStringLiteral("set"));
    EXPECT_EQ(calls, 2);
    EXPECT_EQ(defaults.string(key), QStringLiteral("set"));
    defaults.synchronize();
    EXPECT_EQ(stored(key), QStringLiteral("set"));
}

TEST_F(UserDefaultsTest, KeepsAProposalInMemoryThatCannotBeWritten)
{
    store("a file where a folder would have to be");
    UserDefaults defaults(path() + QStringLiteral("/Quillo.conf"));
    EXPECT_EQ(defaults.agreedString(key, QStringLiteral("1")).get(), QStringLiteral("1"));
    EXPECT_EQ(defaults.string(key), QStringLiteral("1"));
    EXPECT_FALSE(defaults.synchronize());
    ASSERT_TRUE(QFile::remove(path()));
    EXPECT_TRUE(defaults.synchronize()) << "it is tried again";
}

TEST_F(UserDefaultsTest, TouchesNoFileUntilAskedForAValue)
{
    store("[General]\nkey=old\n");
    const UserDefaults defaults(path());
    store("[General]\nkey=new\n");
    EXPECT_EQ(defaults.string(key), QStringLiteral("new"));
}

TEST_F(UserDefaultsTest, StartsWithNothingFromADamagedFileAndKeepsItAside)
{
    store("[General]\nkey=\"cut of");
    {
        UserDefaults defaults(path());
        EXPECT_EQ(defaults.string(key), std::nullopt);
        defaults.setString(key, QStringLiteral("fresh"));
    }
    EXPECT_EQ(stored(key), QStringLiteral("fresh"));
    QFile aside(path() + QStringLiteral(".damaged"));
    ASSERT_TRUE(aside.open(QFile::ReadOnly));
    EXPECT_EQ(aside.readAll(), "[General]\nkey=\"cut of");
}

TEST(UserDefaultsStandardTest, LiesInTheUsersConfigurationFolder)
{
    const QString path = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
                         QStringLiteral("/Quillo/Quillo.conf");
    UserDefaults::standard().setString(key, QStringLiteral("value"));
    ASSERT_TRUE(UserDefaults::standard().synchronize());
    EXPECT_EQ(UserDefaults(path).string(key), QStringLiteral("value"));
    UserDefaults::standard().remove(key);
    EXPECT_TRUE(UserDefaults::standard().synchronize());
}

} // namespace
} // namespace quillo
