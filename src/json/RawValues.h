// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringView>

#include <array>
#include <cstddef>
#include <optional>
#include <utility>

namespace quillo {

/// The names of an enumeration's cases, as data.
template <typename Enum, std::size_t count>
using RawValueTable = std::array<std::pair<Enum, QStringView>, count>;

template <typename Enum, std::size_t count>
QString nameIn(const RawValueTable<Enum, count>& table, Enum value)
{
    for (const auto& [entry, name] : table) {
        if (entry == value)
            return name.toString();
    }
    Q_UNREACHABLE();
}

template <typename Enum, std::size_t count>
std::optional<Enum> caseIn(const RawValueTable<Enum, count>& table, QStringView name)
{
    for (const auto& [entry, entryName] : table) {
        if (entryName == name)
            return entry;
    }
    return std::nullopt;
}

} // namespace quillo
