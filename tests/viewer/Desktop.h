// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <QDesktopServices>
#include <QList>
#include <QUrl>

namespace quillo {

/// Stands for the desktop's browser and mail program while it lives.
class Desktop : public QObject
{
    Q_OBJECT

public:
    Desktop()
    {
        for (const char* scheme : {"http", "https", "mailto"})
            QDesktopServices::setUrlHandler(QLatin1String(scheme), this, "open");
    }
    ~Desktop() override
    {
        for (const char* scheme : {"http", "https", "mailto"})
            QDesktopServices::unsetUrlHandler(QLatin1String(scheme));
    }

    QList<QUrl> opened;

public Q_SLOTS:
    void open(const QUrl& address) { opened.append(address); }
};

} // namespace quillo
