// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <QLocale>
#include <QString>

class QScreen;

/// What the machine, its system and its user's settings say of themselves. Main thread only.
namespace quillo::SystemInfo {

/// Where Linux keeps what Qt does not tell.
struct Sources
{
    QString productName = QStringLiteral("/sys/class/dmi/id/product_name");
    QString deviceTreeModel = QStringLiteral("/proc/device-tree/model");
    QString memory = QStringLiteral("/proc/meminfo");
};

/// The system's name with its version, as people write it.
QString operatingSystemVersion();

/// The machine's model: its DMI product name, else the model of its device tree, else "".
QString deviceModel(const Sources& sources = {});

/// Width and height of the main screen in device-independent pixels ("1512x982"), or "unknown" without one.
QString screenResolution();
QString screenResolution(const QScreen* screen);

/// The locale in which the user wants dates and times written, which may be another than that of the
/// messages: of LC_ALL, LC_TIME and LANG the first that is set. Each text that has a date in a locale's style
/// uses it.
QLocale dateLocale();

/// The kernel's free pages in bytes, or 0 when it does not tell.
qint64 availableMemory(const Sources& sources = {});

} // namespace quillo::SystemInfo
