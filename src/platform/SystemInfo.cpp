// SPDX-License-Identifier: AGPL-3.0-or-later
#include "platform/SystemInfo.h"

#include <QByteArrayList>
#include <QFile>
#include <QGuiApplication>
#include <QScreen>
#include <QSysInfo>

namespace quillo::SystemInfo {
namespace {

constexpr qint64 bytesPerKilobyte = 1024;

// Files of the kernel have no size until they are read, and none of these is longer.
constexpr qint64 longestFile = 64 * bytesPerKilobyte;

QByteArray contentOf(const QString& path)
{
    QFile file(path);
    return file.open(QFile::ReadOnly) ? file.read(longestFile) : QByteArray();
}

// Up to the NUL that ends a string of the device tree.
QString lineIn(const QString& path)
{
    return QString::fromUtf8(contentOf(path).constData()).trimmed();
}

} // namespace

QString operatingSystemVersion()
{
    return QSysInfo::prettyProductName();
}

QString deviceModel(const Sources& sources)
{
    const QString productName = lineIn(sources.productName);
    return productName.isEmpty() ? lineIn(sources.deviceTreeModel) : productName;
}

QString screenResolution()
{
    // Asking for screens is only allowed where there is an application.
    return screenResolution(qGuiApp == nullptr ? nullptr : QGuiApplication::primaryScreen());
}

QString screenResolution(const QScreen* screen)
{
    if (screen == nullptr)
        return QStringLiteral("unknown");
    const QSize size = screen->size();
    return QStringLiteral("%1x%2").arg(size.width()).arg(size.height());
}

qint64 availableMemory(const Sources& sources)
{
    for (const QByteArray& line : contentOf(sources.memory).split('\n')) {
        const QByteArrayList words = line.simplified().split(' ');
        if (words.size() == 3 && words[0] == "MemFree:" && words[2] == "kB")
            return words[1].toLongLong() * bytesPerKilobyte;
    }
    return 0;
}

} // namespace quillo::SystemInfo
