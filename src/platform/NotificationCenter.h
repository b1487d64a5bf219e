// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <QObject>
#include <QString>
#include <QVariant>

#include <functional>

namespace quillo {

/// Named messages between parts of the program that do not know each other. Main thread only: observers are
/// called inside post(), in the order in which they came.
class NotificationCenter : public QObject
{
    Q_OBJECT

public:
    using Handler = std::function<void(const QVariant& object)>;

    explicit NotificationCenter(QObject* parent = nullptr);

    /// The process-wide centre.
    static NotificationCenter& defaultCenter();

    /// Calls every observer of the name; without one it does nothing.
    void post(const QString& name, const QVariant& object = {});

    /// The observer lasts as long as its context.
    void addObserver(QObject* context, const QString& name, Handler handler);

Q_SIGNALS:
    void posted(const QString& name, const QVariant& object);
};

} // namespace quillo
