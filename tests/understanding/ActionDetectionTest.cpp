// SPDX-License-Identifier: AGPL-3.0-or-later
#include "understanding/ActionDetection.h"

#include "support/Printing.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>

namespace quillo {
namespace {

using ReasonType = DocumentInsight::ActionReason::ReasonType;
using testing::ElementsAre;
using testing::IsEmpty;

const QTimeZone newYork("America/New_York");

PageTexts pagesOf(const QStringList& texts)
{
    PageTexts pages;
    for (const QString& text : texts)
        pages.emplace_back(static_cast<std::int64_t>(pages.size()), text, false, std::nullopt);
    return pages;
}

DocumentInsight::ActionRequired detect(const QStringList& texts)
{
    return detectActions(pagesOf(texts), {newYork, QLocale(QStringLiteral("en_US"))});
}

/// The descriptions of the reasons that one page gives.
std::vector<std::string> found(const QString& text)
{
    std::vector<std::string> descriptions;
    for (const auto& reason : detect({text}).reasons)
        descriptions.push_back(reason.description.toStdString());
    return descriptions;
}

TEST(ActionDetectionTest, FindsNothingInAnEmptyDocument)
{
    for (const QStringList& texts : {QStringList(), QStringList{QString()}}) {
        const auto actions = detect(texts);
        EXPECT_FALSE(actions.required);
        EXPECT_TRUE(actions.reasons.empty());
    }
}

TEST(ActionDetectionTest, GivesADueDateWithItsDate)
{
    const auto actions = detect({QString(), QStringLiteral("PAYMENT DUE: 1/15/2024")});
    EXPECT_TRUE(actions.required);
    ASSERT_EQ(actions.reasons.size(), 1U);
    const auto& reason = actions.reasons[0];
    EXPECT_EQ(reason.type, ReasonType::dueDate);
    EXPECT_EQ(reason.description, QStringLiteral("Due date found: Jan 15, 2024"));
    EXPECT_EQ(reason.pageNumber, 1);
    EXPECT_EQ(reason.dueDate, PointInTime::of(QDateTime(QDate(2024, 1, 15), QTime(0, 0), newYork)));
}

TEST(ActionDetectionTest, TakesPaymentDueForADueDateAndAmountDueForAPayment)
{
    EXPECT_THAT(
        found(QStringLiteral("Amount due $5. Payment due 1/15/2024")),
        ElementsAre("Due date found: Jan 15, 2024", "Payment appears to be required"));
}

TEST(ActionDetectionTest, MentionsThePhraseWhereTheDateLacksItsComma)
{
    const auto actions = detect({QStringLiteral("The deadline is January 15 2024.")});
    ASSERT_EQ(actions.reasons.size(), 1U);
    EXPECT_EQ(actions.reasons[0].description, QStringLiteral("Document mentions 'deadline'"));
    EXPECT_EQ(actions.reasons[0].type, ReasonType::dueDate);
    EXPECT_FALSE(actions.reasons[0].dueDate.has_value());
}

TEST(ActionDetectionTest, ListsDueDatesInTheOrderOfTheTable)
{
    EXPECT_THAT(
        found(QStringLiteral("due by January 5, 2024 -- due date 2/6/2024")),
        // "due by" has the slashed date behind it as well, and slashes go first.
        ElementsAre("Due date found: Feb 6, 2024", "Due date found: Feb 6, 2024"));
    EXPECT_THAT(
        found(QStringLiteral("due by 1/5/2024 -- due date 2/6/2024")),
        ElementsAre("Due date found: Feb 6, 2024", "Due date found: Jan 5, 2024"));
}

TEST(ActionDetectionTest, LooksBehindTheFirstOccurrenceOnly)
{
    EXPECT_THAT(
        found(
            QStringLiteral("deadline") + QString(120, QLatin1Char('.')) +
            QStringLiteral("deadline 1/5/2024")),
        ElementsAre("Document mentions 'deadline'"));
}

TEST(ActionDetectionTest, DoesNotLookBeforeThePhrase)
{
    EXPECT_THAT(
        found(QStringLiteral("1/5/2024 is the deadline")), ElementsAre("Document mentions 'deadline'"));
}

TEST(ActionDetectionTest, DoesNotGoOnToMonthNamesWhenTheSlashedDateIsNone)
{
    EXPECT_THAT(
        found(QStringLiteral("deadline 99/99/2024, January 5, 2024")),
        ElementsAre("Document mentions 'deadline'"));
}

TEST(ActionDetectionTest, ReadsDayBeforeMonthWhereItMust)
{
    EXPECT_THAT(found(QStringLiteral("deadline 15/01/2024")), ElementsAre("Due date found: Jan 15, 2024"));
    EXPECT_THAT(found(QStringLiteral("deadline 03/04/2024")), ElementsAre("Due date found: Mar 4, 2024"));
}

TEST(ActionDetectionTest, KnowsNeitherDayFirstNamesNorHyphensNearAPhrase)
{
    EXPECT_THAT(
        found(QStringLiteral("deadline 5 January 2024")), ElementsAre("Document mentions 'deadline'"));
    EXPECT_THAT(found(QStringLiteral("deadline 2024-01-05")), ElementsAre("Document mentions 'deadline'"));
}

QString withGap(const QString& character, int count)
{
    return QStringLiteral("deadline") + character.repeated(count) + QStringLiteral("1/5/2024");
}

TEST(ActionDetectionTest, LooksAHundredCharactersFar)
{
    const QString dot = QStringLiteral(".");
    EXPECT_THAT(found(withGap(dot, 92)), ElementsAre("Due date found: Jan 5, 2024"));
    EXPECT_THAT(found(withGap(dot, 93)), ElementsAre("Document mentions 'deadline'"));
}

TEST(ActionDetectionTest, CountsCharactersAsAPersonDoes)
{
    for (const QString& character :
         {QStringLiteral("\U0001F600"), QStringLiteral("e\u0301"), QStringLiteral("\r\n"),
          QStringLiteral("\U0001F469\u200D\U0001F467"), QStringLiteral("\U0001F1E9\U0001F1EA")}) {
        EXPECT_THAT(found(withGap(character, 92)), ElementsAre("Due date found: Jan 5, 2024"))
            << character.toStdString();
        EXPECT_THAT(found(withGap(character, 93)), ElementsAre("Document mentions 'deadline'"))
            << character.toStdString();
    }
}

TEST(ActionDetectionTest, CutsADateAtTheEndOfTheWindow)
{
    // Of "11/12/20245" the window holds "11/12/2024", of the next text one character less.
    EXPECT_THAT(
        found(QStringLiteral("deadline") + QString(90, QLatin1Char('.')) + QStringLiteral("11/12/20245")),
        ElementsAre("Due date found: Nov 12, 2024"));
    EXPECT_THAT(
        found(QStringLiteral("deadline") + QString(91, QLatin1Char('.')) + QStringLiteral("11/12/20245")),
        ElementsAre("Document mentions 'deadline'"));
}

TEST(ActionDetectionTest, UsesThePositionInTheLowerCasedCopyAsItIs)
{
    // The dotted capital I is two units in lower case, so the window begins one unit late for each.
    EXPECT_THAT(
        found(QStringLiteral("\u0130 deadline 1/5/2024")), ElementsAre("Due date found: Jan 5, 2024"));
    EXPECT_THAT(
        found(QStringLiteral("\u0130\u0130 deadline 1/5/2024")), ElementsAre("Document mentions 'deadline'"));
    EXPECT_THAT(
        found(QStringLiteral("\u0130\u0130 deadline 11/5/2024")), ElementsAre("Due date found: Jan 5, 2024"));
}

TEST(ActionDetectionTest, FindsNoDateWhereThePositionLiesBehindTheText)
{
    EXPECT_THAT(
        found(QString(1000, QChar(0x0130)) + QStringLiteral("deadline 1/5/2024")),
        ElementsAre("Document mentions 'deadline'"));
}

TEST(ActionDetectionTest, TakesAPositionWithinAPair)
{
    EXPECT_THAT(
        found(QStringLiteral("\u0130deadline\U0001F600 1/5/2024")),
        ElementsAre("Due date found: Jan 5, 2024"));
}

TEST(ActionDetectionTest, FindsPhrasesInAnyCaseAndInsideWords)
{
    EXPECT_THAT(found(QStringLiteral("DEADLINES")), ElementsAre("Document mentions 'deadline'"));
    EXPECT_THAT(
        found(QStringLiteral("Please \u212Aeep, PLEASE SIGN")),
        ElementsAre("Signature appears to be required"));
}

TEST(ActionDetectionTest, GivesOneReasonPerKindForAnyNumberOfPhrases)
{
    EXPECT_THAT(
        found(QStringLiteral("Please sign here: sign here. Please remit, please pay. Send to X, mail to Y.")),
        ElementsAre(
            "Payment appears to be required", "Signature appears to be required",
            "Document appears to require submission"));
}

TEST(ActionDetectionTest, OrdersReasonsByPageAndThenByKind)
{
    const auto actions = detect(
        {QStringLiteral("return by post; signatory"), QStringLiteral("balance due, final date, submit by")});
    std::vector<std::pair<ReasonType, int>> order;
    for (const auto& reason : actions.reasons)
        order.emplace_back(reason.type, static_cast<int>(reason.pageNumber));
    EXPECT_THAT(
        order, ElementsAre(
                   std::pair(ReasonType::signature, 0), std::pair(ReasonType::submission, 0),
                   std::pair(ReasonType::dueDate, 1), std::pair(ReasonType::payment, 1),
                   std::pair(ReasonType::submission, 1)));
}

TEST(ActionDetectionTest, RepeatsAReasonOnEveryPage)
{
    QStringList texts;
    for (int page = 0; page < 10; ++page)
        texts.append(QStringLiteral("last date"));
    EXPECT_EQ(detect(texts).reasons.size(), 10U);
}

TEST(ActionDetectionTest, TakesThePageNumberFromThePage)
{
    PageTexts pages;
    pages.emplace_back(41, QStringLiteral("please submit"), true, std::nullopt);
    EXPECT_EQ(detectActions(pages, {newYork, QLocale::c()}).reasons.at(0).pageNumber, 41);
}

TEST(ActionDetectionTest, KnowsEveryPhrase)
{
    for (const char* phrase :
         {"due date", "payment due", "due by", "deadline", "must be received by", "expires on",
          "expiration date", "final date", "last date"})
        EXPECT_THAT(
            found(QLatin1String(phrase)), ElementsAre(std::string("Document mentions '") + phrase + "'"));
    for (const char* phrase :
         {"amount due", "payment required", "please remit", "pay by", "balance due", "total amount due",
          "payment enclosed", "please pay"})
        EXPECT_THAT(found(QLatin1String(phrase)), ElementsAre("Payment appears to be required"));
    for (const char* phrase :
         {"signature required", "please sign", "sign here", "signature:", "authorized signature",
          "your signature", "signature line", "signatory", "please initial"})
        EXPECT_THAT(found(QLatin1String(phrase)), ElementsAre("Signature appears to be required"));
    for (const char* phrase :
         {"please submit", "must be submitted", "return this form", "send to", "submit by", "mail to",
          "return by", "please return"})
        EXPECT_THAT(found(QLatin1String(phrase)), ElementsAre("Document appears to require submission"));
    EXPECT_THAT(
        found(QStringLiteral("submission deadline")),
        ElementsAre("Document mentions 'deadline'", "Document appears to require submission"));
}

TEST(ActionDetectionTest, PrintsDatesInTheGivenLocale)
{
    const auto actions = detectActions(
        pagesOf({QStringLiteral("deadline 1/5/2024")}), {newYork, QLocale(QStringLiteral("fr_FR"))});
    EXPECT_EQ(actions.reasons.at(0).description, QStringLiteral("Due date found: 5 janv. 2024"));
}

TEST(ActionDetectionTest, BeginsADayWhereItBeginsInTheZone)
{
    // The clocks of this zone went from 23:59:59 to 01:00 on that night.
    const auto actions = detectActions(
        pagesOf({QStringLiteral("deadline 10/15/2017")}), {QTimeZone("America/Sao_Paulo"), QLocale::c()});
    EXPECT_EQ(
        actions.reasons.at(0).dueDate->toDateTime(), QDateTime(QDate(2017, 10, 15), QTime(3, 0), Qt::UTC));
    EXPECT_EQ(actions.reasons.at(0).description, QStringLiteral("Due date found: Oct 15, 2017"));
}

TEST(ActionDetectionTest, HasNoDueDateOnADayThatTheZoneSkipped)
{
    const auto actions = detectActions(
        pagesOf({QStringLiteral("deadline 12/30/2011")}), {QTimeZone("Pacific/Apia"), QLocale::c()});
    EXPECT_EQ(actions.reasons.at(0).description, QStringLiteral("Document mentions 'deadline'"));
    EXPECT_EQ(actions.reasons.at(0).dueDate, std::nullopt);
}

TEST(ActionDetectionTest, TakesUtcForAZoneThatIsNotKnown)
{
    const auto actions = detectActions(
        pagesOf({QStringLiteral("deadline 1/5/2024")}), {QTimeZone("Nowhere/Land"), QLocale::c()});
    EXPECT_EQ(actions.reasons.at(0).description, QStringLiteral("Due date found: Jan 5, 2024"));
    ASSERT_TRUE(actions.reasons.at(0).dueDate);
    EXPECT_EQ(
        actions.reasons.at(0).dueDate->toDateTime(), QDateTime(QDate(2024, 1, 5), QTime(0, 0), Qt::UTC));
}

TEST(ActionDetectionTest, PrintsDatesInTheLocaleForTimesAndNotInThatOfTheMessages)
{
    const std::map<const char*, QByteArray> settings{
        {"LC_ALL", ""}, {"LANG", "en_US.UTF-8"}, {"LC_MESSAGES", "it_IT.UTF-8"}, {"LC_TIME", "de_DE.UTF-8"}};
    std::map<const char*, QByteArray> before;
    for (const auto& [name, value] : settings) {
        before[name] = qgetenv(name);
        qputenv(name, value);
    }
    const QLocale locale = DateSettings::system().locale;
    for (const auto& [name, value] : before)
        qputenv(name, value);
    const auto actions = detectActions(pagesOf({QStringLiteral("deadline 1/5/2024")}), {newYork, locale});
    EXPECT_EQ(actions.reasons.at(0).description, QStringLiteral("Due date found: 05.01.2024"));
}

TEST(ActionDetectionTest, TakesAnythingForAText)
{
    QString text;
    for (int unit = 0; unit < 0x10000; ++unit)
        text.append(QChar(static_cast<char16_t>(unit)));
    EXPECT_THAT(found(text), IsEmpty());
    EXPECT_THAT(found(QStringLiteral("deadline") + text), ElementsAre("Document mentions 'deadline'"));
}

TEST(ActionDetectionTest, TakesAHugePage)
{
    // One user-perceived character of fifty million units.
    const QString text =
        QStringLiteral("deadline e") + QString(50'000'000, QChar(0x0301)) + QStringLiteral("1/5/2024");
    EXPECT_THAT(found(text), ElementsAre("Due date found: Jan 5, 2024"));
}

} // namespace
} // namespace quillo
