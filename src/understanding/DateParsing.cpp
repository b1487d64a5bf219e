// SPDX-License-Identifier: AGPL-3.0-or-later
#include "understanding/DateParsing.h"

#include "understanding/FoldedLiteral.h"
#include "understanding/MonthNames.h"
#include "understanding/ScannedText.h"

#include <unicode/udat.h>
#include <unicode/uloc.h>

#include <QByteArray>
#include <QCalendar>
#include <QDateTime>

#include <algorithm>
#include <array>

namespace quillo {
namespace {

constexpr qsizetype nowhere = ScannedText::nowhere;

constexpr std::string_view formats[] = {
    "MM/dd/yyyy", "dd/MM/yyyy", "MMMM dd, yyyy", "dd MMMM yyyy", "yyyy-MM-dd",
};

/// A text that is read from its beginning, field by field; every step tells whether there was such a field.
class FieldReader
{
public:
    explicit FieldReader(QStringView text)
        : m_text(text)
    {}

    bool atEnd() const { return m_at == m_text.size(); }

    bool readNumber(int fewestDigits, int mostDigits, int& value)
    {
        value = 0;
        int digits = 0;
        for (; digits < mostDigits; ++digits) {
            const int length = m_text.digitAt(m_at);
            if (length == 0)
                break;
            const char16_t unit = m_text.unit(m_at);
            const UChar32 digit = length == 1 ? unit : U16_GET_SUPPLEMENTARY(unit, m_text.unit(m_at + 1));
            value = 10 * value + u_charDigitValue(digit);
            m_at += length;
        }
        return digits >= fewestDigits;
    }

    bool readMonthName(int& month)
    {
        month = 0;
        for (const std::string_view name : monthNames) {
            ++month;
            if (const qsizetype end = afterLiteral(m_text, m_at, name); end != nowhere) {
                m_at = end;
                return true;
            }
        }
        return false;
    }

    bool readSpaces()
    {
        const qsizetype start = m_at;
        m_at = m_text.afterSpaces(m_at);
        return m_at != start;
    }

    bool readSign(char sign) { return m_text.unit(m_at++) == static_cast<char16_t>(sign); }

private:
    const ScannedText m_text;
    qsizetype m_at = 0;
};

// The first day of the Gregorian calendar, as digits.
constexpr int firstGregorianDay = 1582'10'15;

/// The days that the reform left out count as Julian ones, too.
QDate dayOf(int year, int month, int day)
{
    if (10000 * year + 100 * month + day >= firstGregorianDay)
        return QDate(year, month, day);
    return QCalendar(QCalendar::System::Julian).dateFromParts(year, month, day);
}

std::optional<QDate> parseDate(std::string_view format, QStringView text)
{
    FieldReader reader(text);
    int year = 0;
    int month = 0;
    int day = 0;
    while (!format.empty()) {
        const std::size_t length = std::min(format.find_first_not_of(format.front()), format.size());
        const std::string_view field = format.substr(0, length);
        format.remove_prefix(length);
        bool read = false;
        if (field == "yyyy")
            read = reader.readNumber(4, 4, year);
        else if (field == "MMMM")
            read = reader.readMonthName(month);
        else if (field == "MM")
            read = reader.readNumber(1, 2, month);
        else if (field == "dd")
            read = reader.readNumber(1, 2, day);
        else if (field == " ")
            read = reader.readSpaces();
        else
            read = reader.readSign(field.front());
        if (!read)
            return std::nullopt;
    }
    const QDate date = dayOf(year, month, day);
    return reader.atEnd() && date.isValid() ? std::optional(date) : std::nullopt;
}

} // namespace

std::optional<QDate> parseDate(QStringView text)
{
    for (const std::string_view format : formats) {
        if (const auto date = parseDate(format, text))
            return date;
    }
    return std::nullopt;
}

std::optional<PointInTime> beginningOf(QDate day, const QTimeZone& zone)
{
    const QDateTime beginning = day.startOfDay(zone.isValid() ? zone : QTimeZone::utc());
    // Where the zone skips the day, there is no beginning or it is the next day's.
    return beginning.isValid() && beginning.date() == day ? std::optional(PointInTime::of(beginning))
                                                          : std::nullopt;
}

/// ICU's formatter, for dates given at midnight in UTC; null where ICU has no data at all.
class MediumDateStyle::Format
{
public:
    explicit Format(const QLocale& locale)
    {
        char name[ULOC_FULLNAME_CAPACITY] = "";
        UErrorCode error = U_ZERO_ERROR;
        uloc_forLanguageTag(locale.bcp47Name().toLatin1().constData(), name, sizeof name, nullptr, &error);
        error = U_ZERO_ERROR;
        m_format.adoptInstead(udat_open(UDAT_NONE, UDAT_MEDIUM, name, u"UTC", -1, nullptr, 0, &error));
    }

    QString print(QDate date) const
    {
        UErrorCode error = U_ZERO_ERROR;
        const auto instant = static_cast<UDate>(date.startOfDay(Qt::UTC).toMSecsSinceEpoch());
        std::array<char16_t, 128> text;
        const int32_t length = udat_format(
            m_format.getAlias(), instant, text.data(), static_cast<int32_t>(text.size()), nullptr, &error);
        return U_SUCCESS(error) ? QString::fromUtf16(text.data(), length) : date.toString(Qt::ISODate);
    }

private:
    icu::LocalUDateFormatPointer m_format;
};

MediumDateStyle::MediumDateStyle(const QLocale& locale)
    : m_locale(locale)
{}

MediumDateStyle::~MediumDateStyle() = default;

QString MediumDateStyle::print(QDate date)
{
    if (!m_format)
        m_format = std::make_unique<Format>(m_locale);
    return m_format->print(date);
}

} // namespace quillo
