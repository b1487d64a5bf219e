// SPDX-License-Identifier: AGPL-3.0-or-later
#include "platform/UserDefaults.h"

#include <QLocale>
#include <QStandardPaths>

#include <cmath>
#include <utility>

namespace quillo {

UserDefaults::UserDefaults(const QString& path, QObject* parent)
    : QObject(parent)
    , m_file(path)
    , m_writer(m_file)
{}

UserDefaults& UserDefaults::standard()
{
    static UserDefaults defaults(
        QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
        QStringLiteral("/Quillo/Quillo.conf"));
    return defaults;
}

std::optional<bool> UserDefaults::boolean(const QString& key) const
{
    const QString* found = text(key);
    if (found != nullptr && (*found == u"true" || *found == u"1"))
        return true;
    if (found != nullptr && (*found == u"false" || *found == u"0"))
        return false;
    return std::nullopt;
}

std::optional<double> UserDefaults::number(const QString& key) const
{
    const QString* found = text(key);
    bool ok = false;
    const double value = found == nullptr ? 0 : found->toDouble(&ok);
    return ok && std::isfinite(value) ? std::optional(value) : std::nullopt;
}

std::optional<QString> UserDefaults::string(const QString& key) const
{
    const QString* found = text(key);
    return found == nullptr ? std::nullopt : std::optional(*found);
}

std::optional<QByteArray> UserDefaults::bytes(const QString& key) const
{
    const auto* found = std::get_if<QByteArray>(value(key));
    return found == nullptr ? std::nullopt : std::optional(*found);
}

void UserDefaults::setBoolean(const QString& key, bool value)
{
    set(key, value ? QStringLiteral("true") : QStringLiteral("false"));
}

void UserDefaults::setNumber(const QString& key, double value)
{
    set(key, QString::number(value, 'g', QLocale::FloatingPointShortest));
}

void UserDefaults::setString(const QString& key, const QString& value)
{
    set(key, value);
}

void UserDefaults::setBytes(const QString& key, const QByteArray& value)
{
    set(key, value);
}

void UserDefaults::remove(const QString& key)
{
    const bool wasAgreed = m_agreements.erase(key) > 0;
    const bool isChange = values().erase(key) > 0 || wasAgreed;
    // Also where the key is absent here: another process may have written it.
    m_writer.change(key, std::nullopt);
    if (isChange)
        Q_EMIT changed(key);
}

std::shared_future<QString> UserDefaults::agreedString(const QString& key, const QString& proposal)
{
    if (const auto agreement = m_agreements.find(key); agreement != m_agreements.end())
        return agreement->second;
    if (const QString* own = text(key)) {
        std::promise<QString> known;
        known.set_value(*own);
        return known.get_future().share();
    }
    auto agreed = m_writer.propose(key, proposal);
    m_agreements.emplace(key, agreed);
    Q_EMIT changed(key);
    return agreed;
}

void UserDefaults::addObserver(QObject* context, const QString& key, Handler handler)
{
    connect(
        this, &UserDefaults::changed, context,
        [key, observer = std::move(handler)](const QString& changedKey) {
            if (changedKey == key)
                observer();
        });
}

bool UserDefaults::synchronize()
{
    return m_writer.synchronize();
}

IniValues& UserDefaults::values() const
{
    if (!m_values)
        m_values = m_file.read();
    return *m_values;
}

const IniValue* UserDefaults::value(const QString& key) const
{
    if (const auto agreement = m_agreements.find(key); agreement != m_agreements.end()) {
        values().insert_or_assign(key, agreement->second.get());
        m_agreements.erase(agreement);
    }
    const auto found = values().find(key);
    return found == values().end() ? nullptr : &found->second;
}

const QString* UserDefaults::text(const QString& key) const
{
    return std::get_if<QString>(value(key));
}

void UserDefaults::set(const QString& key, IniValue value)
{
    const bool wasAgreed = m_agreements.erase(key) > 0;
    const auto found = values().find(key);
    const bool isChange = wasAgreed || found == values().end() || found->second != value;
    if (isChange)
        values().insert_or_assign(key, value);
    // Also where it is the value known here: another process may have written another one.
    m_writer.change(key, std::move(value));
    if (isChange)
        Q_EMIT changed(key);
}

} // namespace quillo
