// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "json/PointInTime.h"

#include <QDate>
#include <QLocale>
#include <QString>
#include <QStringView>
#include <QTimeZone>

#include <memory>
#include <optional>

namespace quillo {

/// Reads a date in the first of five formats that the whole text has, in this order: MM/dd/yyyy, dd/MM/yyyy,
/// MMMM dd, yyyy, dd MMMM yyyy and yyyy-MM-dd, all in English.
///
/// Strict: the day must exist (before October 15, 1582 in the Julian calendar, as ICU has it, and as
/// MediumDateStyle prints it) and every literal must be there; a space of the format stands for any white
/// space. Days and months may have one digit or two, years have four, and the digits may be those of any
/// script. Month names are whole, in any case.
std::optional<QDate> parseDate(QStringView text);

/// The first moment of the day in the zone, which is not midnight where the clocks go forward at midnight;
/// none where the zone skips the whole day, as those do that change sides of the date line. UTC stands in for
/// a zone that is not known.
std::optional<PointInTime> beginningOf(QDate day, const QTimeZone& zone);

/// Prints dates in the medium style of a locale, without the time: "Jan 15, 2024" in American English. What
/// ICU needs for that is loaded with the first date. One thread at a time.
class MediumDateStyle
{
public:
    explicit MediumDateStyle(const QLocale& locale);
    ~MediumDateStyle();
    MediumDateStyle(const MediumDateStyle&) = delete;
    MediumDateStyle& operator=(const MediumDateStyle&) = delete;

    /// The date must be valid.
    QString print(QDate date);

private:
    class Format;

    QLocale m_locale;
    std::unique_ptr<Format> m_format;
};

} // namespace quillo
