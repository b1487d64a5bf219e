// SPDX-License-Identifier: AGPL-3.0-or-later
#include "platform/NotificationCenter.h"

#include <utility>

namespace quillo {

NotificationCenter::NotificationCenter(QObject* parent)
    : QObject(parent)
{}

NotificationCenter& NotificationCenter::defaultCenter()
{
    static auto* const center = new NotificationCenter;
    return *center;
}

void NotificationCenter::post(const QString& name, const QVariant& object)
{
    Q_EMIT posted(name, object);
}

void NotificationCenter::addObserver(QObject* context, const QString& name, Handler handler)
{
    connect(
        this, &NotificationCenter::posted, context,
        [name, observer = std::move(handler)](const QString& postedName, const QVariant& object) {
            if (postedName == name)
                observer(object);
        });
}

} // namespace quillo
