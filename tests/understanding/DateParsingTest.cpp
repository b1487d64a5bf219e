// SPDX-License-Identifier: AGPL-3.0-or-later
#include "understanding/DateParsing.h"

#include "support/Printing.h"

#include <gtest/gtest.h>

#include <unicode/smpdtfmt.h>

#include <QDateTime>
#include <QStringList>

#include <random>

namespace quillo {
namespace {

using Date = std::optional<QDate>;

TEST(DateParsingTest, PutsTheMonthFirstBetweenSlashes)
{
    EXPECT_EQ(parseDate(u"03/04/2024"), Date(QDate(2024, 3, 4)));
}

TEST(DateParsingTest, PutsTheDayFirstWhereThatAloneMakesADate)
{
    EXPECT_EQ(parseDate(u"15/01/2024"), Date(QDate(2024, 1, 15)));
}

TEST(DateParsingTest, ReadsMonthNames)
{
    EXPECT_EQ(parseDate(u"January 15, 2024"), Date(QDate(2024, 1, 15)));
    EXPECT_EQ(parseDate(u"31 December 1999"), Date(QDate(1999, 12, 31)));
}

TEST(DateParsingTest, ReadsYearMonthDay)
{
    EXPECT_EQ(parseDate(u"2024-02-29"), Date(QDate(2024, 2, 29)));
}

TEST(DateParsingTest, ReadsDaysAndMonthsOfOneDigit)
{
    EXPECT_EQ(parseDate(u"1/5/2024"), Date(QDate(2024, 1, 5)));
    EXPECT_EQ(parseDate(u"January 5, 2024"), Date(QDate(2024, 1, 5)));
}

TEST(DateParsingTest, ReadsMonthNamesInAnyCase)
{
    EXPECT_EQ(parseDate(u"jANUARY 5, 2024"), Date(QDate(2024, 1, 5)));
    EXPECT_EQ(parseDate(u"Augu\uFB06 5, 2024"), Date(QDate(2024, 8, 5)));
}

TEST(DateParsingTest, ReadsDigitsOfAnyScript)
{
    EXPECT_EQ(parseDate(u"\u0661/\u0665/\u0662\u0660\u0662\u0664"), Date(QDate(2024, 1, 5)));
    EXPECT_EQ(parseDate(u"\U0001D7CF/5/2024"), Date(QDate(2024, 1, 5)));
}

TEST(DateParsingTest, TakesAnyWhiteSpaceForASpace)
{
    EXPECT_EQ(parseDate(u"January\n5,  2024"), Date(QDate(2024, 1, 5)));
}

TEST(DateParsingTest, RefusesDaysThatDoNotExist)
{
    EXPECT_EQ(parseDate(u"02/30/2024"), std::nullopt);
    EXPECT_EQ(parseDate(u"February 29, 2023"), std::nullopt);
    EXPECT_EQ(parseDate(u"13/13/2024"), std::nullopt);
    EXPECT_EQ(parseDate(u"00/10/2024"), std::nullopt);
    EXPECT_EQ(parseDate(u"01/00/2024"), std::nullopt);
    EXPECT_EQ(parseDate(u"01/01/0000"), std::nullopt);
}

TEST(DateParsingTest, RefusesAMissingLiteral)
{
    EXPECT_EQ(parseDate(u"January 15 2024"), std::nullopt);
    EXPECT_EQ(parseDate(u"January 15,2024"), std::nullopt);
    EXPECT_EQ(parseDate(u"January15, 2024"), std::nullopt);
    EXPECT_EQ(parseDate(u"01/152024"), std::nullopt);
}

TEST(DateParsingTest, RefusesAnythingBesidesTheDate)
{
    EXPECT_EQ(parseDate(u"01/15/2024."), std::nullopt);
    EXPECT_EQ(parseDate(u"01/15/20244"), std::nullopt);
    EXPECT_EQ(parseDate(u" 01/15/2024"), std::nullopt);
    EXPECT_EQ(parseDate(u""), std::nullopt);
}

TEST(DateParsingTest, RefusesYearsOfFewerThanFourDigits)
{
    EXPECT_EQ(parseDate(u"01/15/24"), std::nullopt);
}

TEST(DateParsingTest, RefusesAbbreviatedMonthNames)
{
    EXPECT_EQ(parseDate(u"Jan 15, 2024"), std::nullopt);
}

/// What ICU's own formatter reads, strictly, in the first of the five formats that it reads at all.
Date parseByIcu(const QString& text)
{
    const icu::UnicodeString units(
        reinterpret_cast<const char16_t*>(text.utf16()), static_cast<int32_t>(text.size()));
    for (const char16_t* pattern :
         {u"MM/dd/yyyy", u"dd/MM/yyyy", u"MMMM dd, yyyy", u"dd MMMM yyyy", u"yyyy-MM-dd"}) {
        UErrorCode error = U_ZERO_ERROR;
        icu::SimpleDateFormat format(pattern, icu::Locale("en_US_POSIX"), error);
        format.adoptTimeZone(icu::TimeZone::createTimeZone("UTC"));
        format.setLenient(false);
        icu::ParsePosition position(0);
        const UDate date = format.parse(units, position);
        if (U_SUCCESS(error) && position.getErrorIndex() < 0 && position.getIndex() == units.length())
            return QDateTime::fromMSecsSinceEpoch(static_cast<qint64>(date), Qt::UTC).date();
    }
    return std::nullopt;
}

TEST(DateParsingTest, ReadsWhatIcusStrictFormatterReads)
{
    std::mt19937 random(11);
    const auto pick = [&](const QStringList& list) {
        return list[static_cast<qsizetype>(random() % static_cast<std::size_t>(list.size()))];
    };
    const auto number = [&](int most) {
        // ICU, when strict, wants both digits of a field of two.
        return QStringLiteral("%1").arg(random() % static_cast<unsigned>(most), 2, 10, QLatin1Char('0'));
    };
    const QStringList years{QStringLiteral("2024"), QStringLiteral("1900"), QStringLiteral("2000"),
                            QStringLiteral("0000"), QStringLiteral("1500"), QStringLiteral("1582"),
                            QStringLiteral("0004")};
    const QStringList names{
        QStringLiteral("January"),
        QStringLiteral("FEBRUARY"),
        QStringLiteral("may"),
        QStringLiteral("Augu\uFB06"),
        QStringLiteral("\u017Feptember"),
        QStringLiteral("Augus"),
        QString()};
    const QStringList spaces{
        QStringLiteral(" "), QStringLiteral("  "), QStringLiteral("\n\t"), QStringLiteral("\u00A0"),
        QString()};
    const QStringList commas{QStringLiteral(","), QString()};
    const QStringList ends{QString(), QString(), QString(), QStringLiteral("."), QStringLiteral(" x")};
    int dates = 0;
    for (int i = 0; i < 2000; ++i) {
        QString text;
        switch (random() % 4) {
        case 0:
            text = number(33) + QLatin1Char('/') + number(33) + QLatin1Char('/') + pick(years);
            break;
        case 1:
            text = pick(names) + pick(spaces) + number(33) + pick(commas) + pick(spaces) + pick(years);
            break;
        case 2:
            text = number(33) + pick(spaces) + pick(names) + pick(spaces) + pick(years);
            break;
        default:
            text = pick(years) + QLatin1Char('-') + number(14) + QLatin1Char('-') + number(33);
        }
        text += pick(ends);
        const Date date = parseDate(text);
        ASSERT_EQ(date, parseByIcu(text)) << text.toStdString();
        dates += date.has_value();
    }
    EXPECT_GT(dates, 200);
}

TEST(DateParsingTest, ReadsDaysOfLongAgoInTheJulianCalendar)
{
    EXPECT_EQ(parseDate(u"10/15/1582"), Date(QDate(1582, 10, 15)));
    EXPECT_EQ(parseDate(u"10/04/1582"), Date(QDate(1582, 10, 14))) << "the day before";
    EXPECT_EQ(parseDate(u"02/29/1500"), Date(QDate(1500, 3, 10)));
    EXPECT_EQ(parseDate(u"02/29/1700"), std::nullopt);
}

std::optional<QDateTime> beginningIn(const char* zone, QDate day)
{
    const auto beginning = beginningOf(day, QTimeZone(zone));
    return beginning ? std::optional(beginning->toDateTime()) : std::nullopt;
}

QDateTime utc(QDate day, int hour)
{
    return QDateTime(day, QTime(hour, 0), Qt::UTC);
}

TEST(DateParsingTest, BeginsADayAtItsFirstMoment)
{
    EXPECT_EQ(beginningIn("Asia/Tokyo", QDate(2024, 1, 15)), utc(QDate(2024, 1, 14), 15));
    // There the clocks went from 23:59:59 to 01:00 on that night.
    EXPECT_EQ(beginningIn("America/Sao_Paulo", QDate(2018, 11, 4)), utc(QDate(2018, 11, 4), 3));
    EXPECT_EQ(beginningIn("Asia/Beirut", QDate(2018, 3, 25)), utc(QDate(2018, 3, 24), 22));
}

TEST(DateParsingTest, HasNoBeginningOfADayThatTheZoneSkipped)
{
    EXPECT_EQ(beginningIn("Pacific/Apia", QDate(2011, 12, 30)), std::nullopt);
    EXPECT_EQ(beginningIn("Pacific/Apia", QDate(2011, 12, 29)), utc(QDate(2011, 12, 29), 10));
    EXPECT_EQ(beginningIn("Pacific/Apia", QDate(2011, 12, 31)), utc(QDate(2011, 12, 30), 10));
}

TEST(DateParsingTest, TakesUtcForAZoneThatIsNotKnown)
{
    EXPECT_EQ(beginningIn("Nowhere/Land", QDate(2024, 1, 15)), utc(QDate(2024, 1, 15), 0));
}

/// The instant that ICU's calendar has for the day's midnight or, where there is none, for the next moment.
double beginningByIcu(const char* zone, QDate day)
{
    UErrorCode error = U_ZERO_ERROR;
    const std::unique_ptr<icu::Calendar> calendar(icu::Calendar::createInstance(
        icu::TimeZone::createTimeZone(zone), icu::Locale("en_US_POSIX"), error));
    calendar->setSkippedWallTimeOption(UCAL_WALLTIME_NEXT_VALID);
    calendar->clear();
    calendar->set(day.year(), day.month() - 1, day.day());
    return calendar->getTime(error) / 1000 - 978307200;
}

TEST(DateParsingTest, BeginsDaysWhenIcuBeginsThem)
{
    // Zones whose clocks have been changed at midnight, both ways, for years and not recently.
    int skippedDays = 0;
    for (const char* zone :
         {"America/Sao_Paulo", "America/Asuncion", "America/Havana", "Asia/Amman", "Pacific/Apia",
          "Europe/Berlin"}) {
        for (QDate day(1990, 1, 1); day < QDate(2019, 1, 1); day = day.addDays(1)) {
            const auto beginning = beginningOf(day, QTimeZone(zone));
            if (beginning)
                ASSERT_EQ(beginning->seconds, beginningByIcu(zone, day))
                    << zone << ' ' << day.toString(Qt::ISODate).toStdString();
            else
                ++skippedDays;
        }
    }
    EXPECT_EQ(skippedDays, 1);
}

TEST(DateParsingTest, PrintsTheMediumStyleOfALocale)
{
    const QDate date(2024, 1, 5);
    EXPECT_EQ(MediumDateStyle(QLocale(QStringLiteral("en_US"))).print(date), QStringLiteral("Jan 5, 2024"));
    EXPECT_EQ(MediumDateStyle(QLocale(QStringLiteral("en_GB"))).print(date), QStringLiteral("5 Jan 2024"));
    EXPECT_EQ(MediumDateStyle(QLocale(QStringLiteral("de_DE"))).print(date), QStringLiteral("05.01.2024"));
    EXPECT_EQ(MediumDateStyle(QLocale(QStringLiteral("ja_JP"))).print(date), QStringLiteral("2024/01/05"));
}

TEST(DateParsingTest, PrintsInEnglishWhereThereIsNoLocale)
{
    EXPECT_EQ(MediumDateStyle(QLocale::c()).print(QDate(2024, 1, 15)), QStringLiteral("Jan 15, 2024"));
}

TEST(DateParsingTest, PrintsDaysOfLongAgoInTheSameCalendarAsItReadsThem)
{
    EXPECT_EQ(
        MediumDateStyle(QLocale(QStringLiteral("en_US"))).print(*parseDate(u"01/05/1500")),
        QStringLiteral("Jan 5, 1500"));
}

} // namespace
} // namespace quillo
