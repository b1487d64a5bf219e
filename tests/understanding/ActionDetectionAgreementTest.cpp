// SPDX-License-Identifier: AGPL-3.0-or-later
#include "understanding/ActionDetection.h"

#include "understanding/DateParsing.h"
#include "understanding/ExtractionComparison.h"

#include <gtest/gtest.h>

#include <unicode/brkiter.h>
#include <unicode/regex.h>

#include <algorithm>
#include <memory>
#include <random>

namespace quillo {
namespace {

const QStringList dueDatePhrases{
    QStringLiteral("due date"),        QStringLiteral("payment due"),         QStringLiteral("due by"),
    QStringLiteral("deadline"),        QStringLiteral("must be received by"), QStringLiteral("expires on"),
    QStringLiteral("expiration date"), QStringLiteral("final date"),          QStringLiteral("last date"),
};

icu::UnicodeString unitsOf(const QString& text)
{
    return {reinterpret_cast<const char16_t*>(text.utf16()), static_cast<int32_t>(text.size())};
}

QString textOf(const icu::UnicodeString& units)
{
    return QString(reinterpret_cast<const QChar*>(units.getBuffer()), units.length());
}

QString lowerCased(const QString& text)
{
    return textOf(unitsOf(text).toLower(icu::Locale::getRoot()));
}

/// The first hundred characters, counted one by one.
QString window(const QString& text)
{
    UErrorCode error = U_ZERO_ERROR;
    const std::unique_ptr<icu::BreakIterator> characters(
        icu::BreakIterator::createCharacterInstance(icu::Locale::getRoot(), error));
    characters->setText(unitsOf(text));
    int32_t end = 0;
    for (int count = 0; count < 100; ++count) {
        const int32_t next = characters->next();
        if (next == icu::BreakIterator::DONE)
            break;
        end = next;
    }
    return text.left(end);
}

std::optional<QDate> dateIn(const QString& text)
{
    for (
        const char16_t* pattern :
        {uR"((\d{1,2})/(\d{1,2})/(\d{4}))",
         uR"((January|February|March|April|May|June|July|August|September|October|November|December)\s+(\d{1,2}),?\s+(\d{4}))"}) {
        UErrorCode error = U_ZERO_ERROR;
        icu::RegexMatcher matcher(pattern, UREGEX_CASE_INSENSITIVE, error);
        const icu::UnicodeString units = unitsOf(text);
        matcher.reset(units);
        if (matcher.find())
            return parseDate(textOf(matcher.group(error)));
    }
    return std::nullopt;
}

/// The descriptions of a page's due dates, phrase by phrase, each with searches of its own.
std::string dueDatesLiterally(const QString& text)
{
    std::string result;
    const QString lower = lowerCased(text);
    for (const QString& phrase : dueDatePhrases) {
        const qsizetype at = lower.indexOf(phrase);
        if (at < 0)
            continue;
        const auto date = dateIn(window(text.mid(at + phrase.size())));
        result += date ? date->toString(Qt::ISODate).toStdString() : phrase.toStdString();
        result += '\n';
    }
    return result;
}

std::string dueDatesDetected(const QString& text)
{
    PageTexts pages;
    pages.emplace_back(0, text, false, std::nullopt);
    std::string result;
    for (const auto& reason : detectActions(pages, {QTimeZone::utc(), QLocale::c()}).reasons) {
        if (reason.type != DocumentInsight::ActionReason::ReasonType::dueDate)
            continue;
        const QString phrase = reason.description.section(QLatin1Char('\''), 1, 1);
        result += (reason.dueDate ? reason.dueDate->toDateTime().date().toString(Qt::ISODate) : phrase)
                      .toStdString();
        result += '\n';
    }
    return result;
}

TEST(ActionDetectionAgreementTest, AgreesWithSearchesPhraseByPhraseOnRandomTexts)
{
    const QStringList pieces =
        dueDatePhrases + QStringList{
                             QStringLiteral("Due "),
                             QStringLiteral("DATE"),
                             QStringLiteral("1/5/2024"),
                             QStringLiteral("12/31/2024"),
                             QStringLiteral("March 7, 2024"),
                             QStringLiteral("may\n8 2024"),
                             QStringLiteral("99/99/2024"),
                             QStringLiteral("\u0130"),
                             QStringLiteral("\u0130\u0130\u0130"),
                             QStringLiteral("\u212A"),
                             QStringLiteral("\U0001F469\u200D\U0001F467"),
                             QStringLiteral("e\u0301"),
                             QStringLiteral("\r\n"),
                             QStringLiteral("\U0001F1E9\U0001F1EA"),
                             QStringLiteral(" "),
                             QStringLiteral("\uAC00\u11A8"),
                             QStringLiteral("0123456789012345678901234567890123456789"),
                             QString(QChar(0xD83D)),
                             QString(QChar(0)),
                         };
    std::mt19937 random(13);
    int dates = 0;
    for (int i = 0; i < 3000; ++i) {
        QString text;
        const std::size_t count = 1 + random() % 20;
        for (std::size_t piece = 0; piece < count; ++piece)
            text += pieces[static_cast<qsizetype>(random() % static_cast<std::size_t>(pieces.size()))];
        const std::string expected = dueDatesLiterally(text);
        ASSERT_EQ(dueDatesDetected(text), expected) << printable(text);
        dates += expected.find("2024-") != std::string::npos;
    }
    EXPECT_GT(dates, 500);
}

} // namespace
} // namespace quillo
