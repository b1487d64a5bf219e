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

struct ScriptModifier
{
    QStringView modifier;
    QStringView script;
};

// "sr_RS.UTF-8@latin": what QLocale would pass over.
constexpr ScriptModifier scriptModifiers[] = {
    {u"latin", u"Latn"},
    {u"cyrillic", u"Cyrl"},
    {u"devanagari", u"Deva"},
};

QLocale localeNamed(const QString& name)
{
    const QString modifier = name.section(u'@', 1);
    QString bare = name.section(u'@', 0, 0).section(u'.', 0, 0);
    for (const auto& [known, script] : scriptModifiers) {
        if (modifier == known)
            bare.replace(u'_', QStringLiteral("_%1_").arg(script));
    }
    return QLocale(bare);
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

QLocale dateLocale()
{
    for (const char* variable : {"LC_ALL", "LC_TIME", "LANG"}) {
        if (const QString name = qEnvironmentVariable(variable); !name.isEmpty())
            return localeNamed(name);
    }
    return QLocale::system();
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
