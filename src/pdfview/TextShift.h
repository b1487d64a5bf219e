// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <QStringView>

#include <optional>

namespace pdf {

/// Where the places of a text are after a part of it was replaced. Everything is in UTF-16 code units.
class TextShift
{
public:
    TextShift(QStringView before, QStringView after)
        : m_delta(after.size() - before.size())
    {
        const qsizetype shorter = qMin(before.size(), after.size());
        while (m_prefix < shorter && before[m_prefix] == after[m_prefix])
            ++m_prefix;
        qsizetype suffix = 0;
        while (suffix < shorter - m_prefix &&
               before[before.size() - suffix - 1] == after[after.size() - suffix - 1])
            ++suffix;
        m_suffix = before.size() - suffix;
    }

    /// Where that is now which began at the place; absent where it was replaced.
    std::optional<qsizetype> start(qsizetype place) const
    {
        if (place >= m_suffix)
            return place + m_delta;
        return place <= m_prefix ? std::optional(place) : std::nullopt;
    }
    /// The same for what ended at the place.
    std::optional<qsizetype> end(qsizetype place) const
    {
        if (place <= m_prefix)
            return place;
        return place >= m_suffix ? std::optional(place + m_delta) : std::nullopt;
    }

private:
    qsizetype m_delta;
    /// What lies before the one and after the other is as it was.
    qsizetype m_prefix = 0;
    qsizetype m_suffix = 0;
};

} // namespace pdf
