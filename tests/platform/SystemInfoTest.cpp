// SPDX-License-Identifier: AGPL-3.0-or-later
#include "platform/SystemInfo.h"

#include "support/Printing.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QGuiApplication>
#include <QRegularExpression>
#include <QScreen>
#include <QTemporaryDir>

#include <utility>
#include <vector>

namespace quillo {
namespace {

class SystemInfoTest : public testing::Test
{
protected:
    SystemInfo::Sources sources() const
    {
        return {
            m_folder.filePath(QStringLiteral("product")), m_folder.filePath(QStringLiteral("tree")),
            m_folder.filePath(QStringLiteral("memory"))};
    }

    static void write(const QString& path, const QByteArray& text)
    {
        QFile file(path);
        ASSERT_TRUE(file.open(QFile::WriteOnly));
        file.write(text);
    }

private:
    QTemporaryDir m_folder;
};

TEST_F(SystemInfoTest, TakesTheModelFromTheProductName)
{
    write(sources().productName, "Laptop 13 (2024)\n");
    write(sources().deviceTreeModel, QByteArray("Board\0", 6));
    EXPECT_EQ(SystemInfo::deviceModel(sources()), QStringLiteral("Laptop 13 (2024)"));
}

TEST_F(SystemInfoTest, TakesTheModelFromTheDeviceTreeOtherwise)
{
    write(sources().deviceTreeModel, QByteArray("Single Board 4\0", 15));
    EXPECT_EQ(SystemInfo::deviceModel(sources()), QStringLiteral("Single Board 4"));
    write(sources().productName, "\n");
    EXPECT_EQ(SystemInfo::deviceModel(sources()), QStringLiteral("Single Board 4"));
}

TEST_F(SystemInfoTest, HasNoModelWithoutASource)
{
    EXPECT_EQ(SystemInfo::deviceModel(sources()), QString());
}

TEST_F(SystemInfoTest, CountsTheKernelsFreePages)
{
    write(sources().memory, "MemTotal:       16000000 kB\nMemFree:         1234567 kB\nMemAvailable: 9 kB\n");
    EXPECT_EQ(SystemInfo::availableMemory(sources()), 1'234'567 * qint64(1024));
    EXPECT_GT(SystemInfo::availableMemory(), 0) << "this machine's own";
}

TEST_F(SystemInfoTest, HasNoFreeMemoryWhenTheKernelDoesNotTell)
{
    EXPECT_EQ(SystemInfo::availableMemory(sources()), 0);
    write(sources().memory, "MemFree: much\n");
    EXPECT_EQ(SystemInfo::availableMemory(sources()), 0);
    write(sources().memory, "MemFree: lots kB\n");
    EXPECT_EQ(SystemInfo::availableMemory(sources()), 0);
}

TEST_F(SystemInfoTest, NamesTheOperatingSystem)
{
    EXPECT_FALSE(SystemInfo::operatingSystemVersion().isEmpty());
}

/// The name of the locale for dates where the environment has these values.
QString dateLocaleWith(const char* all, const char* time, const char* general)
{
    const std::pair<const char*, const char*> settings[] = {
        {"LC_ALL", all}, {"LC_TIME", time}, {"LANG", general}};
    std::vector<QByteArray> before;
    for (const auto& [name, value] : settings) {
        before.push_back(qgetenv(name));
        qputenv(name, value);
    }
    QString name = SystemInfo::dateLocale().bcp47Name();
    for (std::size_t i = 0; i < before.size(); ++i)
        qputenv(settings[i].first, before[i]);
    return name;
}

TEST_F(SystemInfoTest, TakesTheLocaleOfDatesFromTheFirstVariableThatIsSet)
{
    EXPECT_EQ(dateLocaleWith("fr_FR.UTF-8", "de_DE.UTF-8", "en_GB.UTF-8"), QStringLiteral("fr"));
    EXPECT_EQ(dateLocaleWith("", "de_AT.UTF-8", "en_GB.UTF-8"), QStringLiteral("de-AT"));
    EXPECT_EQ(dateLocaleWith("", "", "en_GB.UTF-8"), QStringLiteral("en-GB"));
}

TEST_F(SystemInfoTest, ReadsLocalesAsTheSystemNamesThem)
{
    EXPECT_EQ(dateLocaleWith("", "de_DE@euro", ""), QStringLiteral("de"));
    EXPECT_EQ(dateLocaleWith("", "sr_RS.UTF-8@latin", ""), QStringLiteral("sr-Latn"));
    EXPECT_EQ(dateLocaleWith("", "C.UTF-8", "de_DE.UTF-8"), QStringLiteral("en"));
    EXPECT_EQ(dateLocaleWith("", "POSIX", ""), QStringLiteral("en"));
}

TEST_F(SystemInfoTest, MeasuresTheMainScreenInItsOwnPixels)
{
    const QSize size = QGuiApplication::primaryScreen()->size();
    EXPECT_EQ(SystemInfo::screenResolution(), QStringLiteral("%1x%2").arg(size.width()).arg(size.height()));
}

TEST_F(SystemInfoTest, KnowsNoSizeOfAnAbsentScreen)
{
    EXPECT_EQ(SystemInfo::screenResolution(nullptr), QStringLiteral("unknown"));
}

} // namespace
} // namespace quillo
