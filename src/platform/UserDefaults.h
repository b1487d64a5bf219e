// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "platform/DefaultsWriter.h"
#include "platform/IniFormat.h"

#include <QByteArray>
#include <QObject>
#include <QString>

#include <functional>
#include <future>
#include <map>
#include <optional>

namespace quillo {

/// The user's settings by key, kept in one INI file that only its owner can read. A change can be read at
/// once, its observers have been told when the setter returns, and within a second, at the latest when the
/// object goes, it is on disk, in the place of whatever another process wrote there earlier; other processes'
/// keys in the same file are left alone. The file is first
/// read when a value is first asked for. A file that is damaged or not to be had is an empty one: nothing
/// is reported, and what cannot be written stays in memory. Main thread only.
///
/// Every read is typed and gives none when the key is absent or its value is not of the type; the caller
/// names its own default: `defaults.boolean(key).value_or(true)`.
class UserDefaults : public QObject
{
    Q_OBJECT

public:
    using Handler = std::function<void()>;

    explicit UserDefaults(const QString& path, QObject* parent = nullptr);

    /// The process-wide defaults, `Quillo/Quillo.conf` in the user's configuration folder. They go, and
    /// are written for the last time, when the program returns from main().
    static UserDefaults& standard();

    std::optional<bool> boolean(const QString& key) const;
    /// A finite number.
    std::optional<double> number(const QString& key) const;
    std::optional<QString> string(const QString& key) const;
    std::optional<QByteArray> bytes(const QString& key) const;

    void setBoolean(const QString& key, bool value);
    void setNumber(const QString& key, double value);
    void setString(const QString& key, const QString& value);
    void setBytes(const QString& key, const QByteArray& value);
    void remove(const QString& key);

    /// The text that the key has in all processes from now on: the one that it has or, when it has none here
    /// nor in the file, the proposed one. Processes that propose at once come to the same text. The file is
    /// asked and written on another thread; until then reading the key waits for that.
    std::shared_future<QString> agreedString(const QString& key, const QString& proposal);

    /// Calls the handler after every change of the key's value, whoever made it in this process. The observer
    /// lasts as long as its context.
    void addObserver(QObject* context, const QString& key, Handler handler);

    /// Waits until all changes are on disk; false when they could not be written.
    bool synchronize();

Q_SIGNALS:
    void changed(const QString& key);

private:
    IniValues& values() const;
    const IniValue* value(const QString& key) const;
    const QString* text(const QString& key) const;
    void set(const QString& key, IniValue value);

    DefaultsFile m_file;
    mutable std::optional<IniValues> m_values;
    /// What is being agreed upon, by key.
    mutable std::map<QString, std::shared_future<QString>> m_agreements;
    DefaultsWriter m_writer;
};

} // namespace quillo
