// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <QDate>
#include <QLocale>
#include <QString>
#include <QStringView>

#include <memory>
#include <optional>

namespace quillo {

/// Reads a date in the first of five formats that the whole text has, in this order: MM/dd/yyyy, dd/MM/yyyy,
/// MMMM dd, yyyy, dd MMMM yyyy and yyyy-MM-dd, all in English.
///
/// Strict: the day must exist (in the Gregorian calendar, however long ago) and every literal must be there;
/// a space of the format stands for any white space. Days and months may have one digit or two, years have
/// four, and the digits may be those of any script. Month names are whole, in any case.
std::optional<QDate> parseDate(QStringView text);

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
