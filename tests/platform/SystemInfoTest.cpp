// SPDX-License-Identifier: AGPL-3.0-or-later
#include "platform/SystemInfo.h"

#include "support/Printing.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QGuiApplication>
#include <QRegularExpression>
#include <QScreen>
#include <QTemporaryDir>

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
