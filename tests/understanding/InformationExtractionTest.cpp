// SPDX-License-Identifier: AGPL-3.0-or-later
#include "understanding/InformationExtraction.h"

#include "support/Printing.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QSet>

#include <string>
#include <vector>

namespace quillo {
namespace {

using ItemType = ExtractedItem::ItemType;
using testing::ElementsAre;
using testing::IsEmpty;

/// The values of one kind's items.
std::vector<std::string> found(ItemType kind, const QString& text)
{
    std::vector<std::string> values;
    for (const ExtractedItem& item : extractItems(kind, text, 0))
        values.push_back(item.value.toStdString());
    return values;
}

std::vector<std::string> dates(const QString& text)
{
    return found(ItemType::date, text);
}

std::vector<std::string> amounts(const QString& text)
{
    return found(ItemType::amount, text);
}

std::vector<std::string> references(const QString& text)
{
    return found(ItemType::reference, text);
}

std::vector<std::string> emails(const QString& text)
{
    return found(ItemType::email, text);
}

std::vector<std::string> phones(const QString& text)
{
    return found(ItemType::phone, text);
}

std::vector<std::string> addresses(const QString& text)
{
    return found(ItemType::address, text);
}

TEST(InformationExtractionTest, ListsKindsInTheirOrderAndNotInThatOfTheText)
{
    const auto items = extractItems(u"Pay $1,234.50 by 1/15/2024.", 0);
    ASSERT_EQ(items.size(), 2U);
    EXPECT_EQ(items[0].type, ItemType::date);
    EXPECT_EQ(items[0].value, QStringLiteral("1/15/2024"));
    EXPECT_EQ(items[0].confidence, 0.9);
    EXPECT_EQ(items[0].pageNumber, 0);
    EXPECT_EQ(items[1].type, ItemType::amount);
    EXPECT_EQ(items[1].value, QStringLiteral("$1,234.50"));
    EXPECT_EQ(items[1].confidence, 0.95);
    EXPECT_EQ(items[1].pageNumber, 0);
}

TEST(InformationExtractionTest, GivesEachKindItsConfidence)
{
    const auto items = extractItems(u"1/2/2024 $5 INV-123456 a@b.org (555) 123-4567, 12 Main Street", 3);
    std::vector<std::pair<ItemType, double>> confidences;
    for (const ExtractedItem& item : items) {
        EXPECT_EQ(item.pageNumber, 3);
        EXPECT_FALSE(item.boundingBox.has_value());
        confidences.emplace_back(item.type, item.confidence);
    }
    EXPECT_THAT(
        confidences, ElementsAre(
                         std::pair(ItemType::date, 0.9), std::pair(ItemType::amount, 0.95),
                         std::pair(ItemType::reference, 0.85), std::pair(ItemType::email, 0.98),
                         std::pair(ItemType::phone, 0.85), std::pair(ItemType::phone, 0.85),
                         std::pair(ItemType::address, 0.7)));
}

TEST(InformationExtractionTest, GivesEveryItemAnIdentityOfItsOwn)
{
    QSet<QUuid> identities;
    for (const ExtractedItem& item : extractItems(QStringLiteral("$1 ").repeated(1000), 0)) {
        EXPECT_EQ(item.id.version(), QUuid::Random);
        EXPECT_EQ(item.id.variant(), QUuid::DCE);
        identities.insert(item.id);
    }
    EXPECT_EQ(identities.size(), 1000);
}

TEST(InformationExtractionTest, FindsNothingInAnEmptyText)
{
    EXPECT_TRUE(extractItems(QStringView(), 0).empty());
    EXPECT_TRUE(extractItems(QString(), 0).empty());
}

TEST(InformationExtractionTest, ListsByPatternAndThenByPlace)
{
    EXPECT_THAT(
        dates(QStringLiteral("2024-01-15, 5 May 2024, 1/2/2024, May 6, 2024, 3/4/2024")),
        ElementsAre("1/2/2024", "3/4/2024", "May 6, 2024", "5 May 2024", "2024-01-15"));
}

TEST(InformationExtractionTest, ReportsTheSameTextUnderEachKindThatMatches)
{
    const auto items = extractItems(u"Order #: 2024-01-15", 0);
    ASSERT_EQ(items.size(), 2U);
    EXPECT_EQ(items[0].type, ItemType::date);
    EXPECT_EQ(items[1].type, ItemType::reference);
}

// Dates

TEST(InformationExtractionTest, TakesTheLastTwoDigitsBeforeASlash)
{
    EXPECT_THAT(dates(QStringLiteral("1234/5/67890")), ElementsAre("34/5/6789"));
    EXPECT_THAT(dates(QStringLiteral("1/234/2024")), IsEmpty());
    EXPECT_THAT(dates(QStringLiteral("1/2/202")), IsEmpty());
}

TEST(InformationExtractionTest, DoesNotLetDatesOverlap)
{
    EXPECT_THAT(dates(QStringLiteral("1/2/2024/3/2025")), ElementsAre("1/2/2024"));
    EXPECT_THAT(dates(QStringLiteral("1/2/20241/3/2025")), ElementsAre("1/2/2024", "1/3/2025"));
    EXPECT_THAT(dates(QStringLiteral("5 May 2024 May 2025")), ElementsAre("5 May 2024"));
    EXPECT_THAT(dates(QStringLiteral("2024-01-2024-02-03")), ElementsAre("2024-01-20"));
}

TEST(InformationExtractionTest, ReadsMonthNamesInAnyCaseAndAcrossLines)
{
    EXPECT_THAT(dates(QStringLiteral("mAY\n 5,\t2024")), ElementsAre("mAY\n 5,\t2024"));
    EXPECT_THAT(
        dates(QStringLiteral("15\u00A0DECEMBER\u30002024")), ElementsAre("15\u00A0DECEMBER\u30002024"));
}

TEST(InformationExtractionTest, NeedsNoCommaBehindTheDay)
{
    EXPECT_THAT(dates(QStringLiteral("January 15 2024")), ElementsAre("January 15 2024"));
    EXPECT_THAT(dates(QStringLiteral("January 15,2024")), IsEmpty());
    EXPECT_THAT(dates(QStringLiteral("January 15 , 2024")), IsEmpty());
    EXPECT_THAT(dates(QStringLiteral("January 155, 2024")), IsEmpty());
    EXPECT_THAT(dates(QStringLiteral("January15, 2024")), IsEmpty());
}

TEST(InformationExtractionTest, FindsMonthsAtTheEndOfWords)
{
    EXPECT_THAT(dates(QStringLiteral("Dismay 5, 2024")), ElementsAre("may 5, 2024"));
    EXPECT_THAT(dates(QStringLiteral("215 Mays 2024")), IsEmpty());
}

TEST(InformationExtractionTest, FoldsCaseAsUnicodeDoes)
{
    EXPECT_THAT(dates(QStringLiteral("\u017Feptember 5, 2024")), ElementsAre("\u017Feptember 5, 2024"));
    EXPECT_THAT(dates(QStringLiteral("Augu\uFB06 5, 2024")), ElementsAre("Augu\uFB06 5, 2024"));
    EXPECT_THAT(dates(QStringLiteral("Ma\u1E99 5, 2024")), IsEmpty());
    EXPECT_THAT(references(QStringLiteral("tr\u212A123456")), ElementsAre("tr\u212A123456"));
    EXPECT_THAT(addresses(QStringLiteral("1 A \uFB06reet")), ElementsAre("1 A \uFB06reet"));
    EXPECT_THAT(references(QStringLiteral("RE\uFB00123456")), IsEmpty());
}

TEST(InformationExtractionTest, TakesDigitsOfEveryScriptAndPlane)
{
    EXPECT_THAT(
        dates(QStringLiteral("\u0661/\u0662/\u0662\u0660\u0662\u0664")),
        ElementsAre("\u0661/\u0662/\u0662\u0660\u0662\u0664"));
    EXPECT_THAT(
        dates(QStringLiteral("9\U0001D7CF\U0001D7D0/3/2024")), ElementsAre("\U0001D7CF\U0001D7D0/3/2024"));
}

// Amounts

TEST(InformationExtractionTest, TakesThreeDigitsOfAnUngroupedAmount)
{
    // The first alternative leads to a match, so the second one, which would take all digits, is never tried.
    EXPECT_THAT(amounts(QStringLiteral("$1234.50")), ElementsAre("$123"));
    EXPECT_THAT(amounts(QStringLiteral("$1,2345")), ElementsAre("$1,234"));
}

TEST(InformationExtractionTest, ReadsAmountsBehindACurrencySign)
{
    EXPECT_THAT(
        amounts(QStringLiteral("€5 £ 6.00 $\u00A07,000 $  8 $1,00 $1.5")),
        ElementsAre("$\u00A07,000", "$1", "$1", "£ 6.00", "€5"));
}

TEST(InformationExtractionTest, ReadsAmountsBeforeACurrencyCode)
{
    EXPECT_THAT(
        amounts(QStringLiteral("1234USD 5.00 EUR 1,234,567.89GBP .50CAD 7  AUD 8 usd 9 US")),
        ElementsAre("1234USD", "5.00 EUR", "1,234,567.89GBP", "50CAD"));
}

TEST(InformationExtractionTest, BeginsAnAmountBeforeACodeAsFarLeftAsItCan)
{
    EXPECT_THAT(amounts(QStringLiteral("1234,567USD")), ElementsAre("234,567USD"));
    EXPECT_THAT(amounts(QStringLiteral("12,34567USD")), ElementsAre("34567USD"));
    EXPECT_THAT(amounts(QStringLiteral("1.2345USD")), ElementsAre("2345USD"));
    EXPECT_THAT(amounts(QStringLiteral("1.23.45USD")), ElementsAre("23.45USD"));
    EXPECT_THAT(amounts(QStringLiteral("12345.67USD")), ElementsAre("12345.67USD"));
}

TEST(InformationExtractionTest, ListsAnAmountWithSignAndCodeTwice)
{
    EXPECT_THAT(amounts(QStringLiteral("$5.00 USD")), ElementsAre("$5.00", "5.00 USD"));
}

TEST(InformationExtractionTest, TakesCodesInCapitalsOnly)
{
    EXPECT_THAT(amounts(QStringLiteral("5 Usd")), IsEmpty());
}

// References

TEST(InformationExtractionTest, ReadsLabelledReferences)
{
    EXPECT_THAT(
        references(QStringLiteral("Invoice Number: AB-12; order #: x9; Account No.: 1; tracking\nno:\n\nZ")),
        ElementsAre("Invoice Number: AB-12", "order #: x9", "Account No.: 1", "tracking\nno:\n\nZ"));
}

TEST(InformationExtractionTest, NeedsTheColonRightBehindTheLabel)
{
    EXPECT_THAT(references(QStringLiteral("Invoice Number 12")), IsEmpty());
    EXPECT_THAT(references(QStringLiteral("Invoice Number : 12")), IsEmpty());
    EXPECT_THAT(references(QStringLiteral("Invoice: 12")), IsEmpty());
    EXPECT_THAT(references(QStringLiteral("Invoice #:")), IsEmpty());
}

TEST(InformationExtractionTest, DoesNotTakeTheCodeOfOneReferenceForTheNounOfTheNext)
{
    EXPECT_THAT(references(QStringLiteral("Invoice#:Order#:X1")), ElementsAre("Invoice#:Order"));
}

TEST(InformationExtractionTest, ReadsPrefixedReferencesInAnyCase)
{
    EXPECT_THAT(
        references(QStringLiteral("inv123456 ORD-1234567 ref 654321 xACC\n000000 CNF--123456 TRK12345")),
        ElementsAre("inv123456", "ORD-1234567", "ref 654321", "ACC\n000000"));
}

// E-mail addresses

TEST(InformationExtractionTest, ReadsEmailAddresses)
{
    EXPECT_THAT(
        emails(QStringLiteral("<a.b+c%d_e-f@mail.example.org>, X@Y.ZZ.")),
        ElementsAre("a.b+c%d_e-f@mail.example.org", "X@Y.ZZ"));
}

TEST(InformationExtractionTest, TakesAVerticalBarForALetterOfTheLastPart)
{
    EXPECT_THAT(emails(QStringLiteral("a@b.c|d")), ElementsAre("a@b.c|d"));
    EXPECT_THAT(emails(QStringLiteral("a@b.||x.cc")), ElementsAre("a@b.||x"));
}

TEST(InformationExtractionTest, EndsAnEmailAddressAtTheLastFullStopThatWillDo)
{
    EXPECT_THAT(emails(QStringLiteral("a@b.cc.d")), ElementsAre("a@b.cc"));
    EXPECT_THAT(emails(QStringLiteral("a@b.cc.dd1")), ElementsAre("a@b.cc.dd"));
    EXPECT_THAT(emails(QStringLiteral("a@.cc")), IsEmpty());
    EXPECT_THAT(emails(QStringLiteral("a@..cc")), ElementsAre("a@..cc"));
    EXPECT_THAT(emails(QStringLiteral("a@b.c1")), IsEmpty());
    EXPECT_THAT(emails(QStringLiteral("@b.cc")), IsEmpty());
    EXPECT_THAT(emails(QStringLiteral("a@b@c.dd@e.ff")), ElementsAre("b@c.dd"));
}

TEST(InformationExtractionTest, KnowsAsciiAlone)
{
    EXPECT_THAT(emails(QStringLiteral("ü.k\u212Aa@ex.org")), ElementsAre("a@ex.org"));
}

// Telephone numbers

TEST(InformationExtractionTest, FindsANumberInParenthesesTwice)
{
    EXPECT_THAT(
        phones(QStringLiteral("Call (555) 123-4567")), ElementsAre(" (555) 123-4567", "(555) 123-4567"));
}

TEST(InformationExtractionTest, NeedsThreeDigitsInTheParentheses)
{
    EXPECT_THAT(phones(QStringLiteral("(55)123-4567")), IsEmpty());
    EXPECT_THAT(phones(QStringLiteral("(5555)123-4567")), ElementsAre("555)123-4567"));
    EXPECT_THAT(phones(QStringLiteral("(555)123 4567")), ElementsAre("(555)123 4567"));
}

TEST(InformationExtractionTest, TakesTheSpaceBeforeANumber)
{
    EXPECT_THAT(phones(QStringLiteral("at\n5551234567")), ElementsAre("\n5551234567"));
    EXPECT_THAT(phones(QStringLiteral("at  555-123-4567")), ElementsAre(" 555-123-4567"));
}

TEST(InformationExtractionTest, ReadsCountryCodeAndSeparators)
{
    EXPECT_THAT(phones(QStringLiteral("+1 (555)-123 4567")), ElementsAre("+1 (555)-123 4567"));
    EXPECT_THAT(phones(QStringLiteral("+15551234567")), ElementsAre("+15551234567"));
    EXPECT_THAT(phones(QStringLiteral("(5551234567")), ElementsAre("(5551234567"));
    EXPECT_THAT(phones(QStringLiteral("555--1234567")), IsEmpty());
    EXPECT_THAT(phones(QStringLiteral("555 123-456")), IsEmpty());
}

TEST(InformationExtractionTest, TakesALeadingOneForACountryCodeOnlyWhereTenDigitsFollow)
{
    EXPECT_THAT(phones(QStringLiteral("1555123456x")), ElementsAre("1555123456"));
    EXPECT_THAT(phones(QStringLiteral("155512345678")), ElementsAre("15551234567"));
}

TEST(InformationExtractionTest, CutsALongRunOfDigitsIntoNumbers)
{
    EXPECT_THAT(phones(QString(25, QLatin1Char('7'))), ElementsAre("7777777777", "7777777777"));
}

TEST(InformationExtractionTest, ReadsBritishNumbers)
{
    EXPECT_THAT(phones(QStringLiteral("+44 2079 460958")), ElementsAre("+44 2079 460958"));
    EXPECT_THAT(phones(QStringLiteral("x44 1234  567890")), IsEmpty());
    EXPECT_THAT(phones(QStringLiteral("00442079460958")), ElementsAre("0044207946", "442079460958"));
}

// Addresses

TEST(InformationExtractionTest, ReadsAddressesAcrossLines)
{
    const auto items = extractItems(ItemType::address, u"to 12 Main\nStreet. Thanks", 0);
    ASSERT_EQ(items.size(), 1U);
    EXPECT_EQ(items[0].value, QStringLiteral("12 Main\nStreet."));
    EXPECT_EQ(items[0].sourceSnippet, QStringLiteral("...to 12 Main Street. Thanks..."));
}

TEST(InformationExtractionTest, EndsAnAddressWithTheLastStreetWord)
{
    EXPECT_THAT(
        addresses(QStringLiteral("12 Main Street and Elm Avenue by the sea, x")),
        ElementsAre("12 Main Street and Elm Avenue"));
    EXPECT_THAT(addresses(QStringLiteral("12 Best Choices")), ElementsAre("12 Best"));
    EXPECT_THAT(addresses(QStringLiteral("7 Always")), ElementsAre("7 Alway"));
}

TEST(InformationExtractionTest, NeedsTwoCharactersBetweenTheNumberAndTheStreetWord)
{
    EXPECT_THAT(addresses(QStringLiteral("12 Street")), IsEmpty());
    EXPECT_THAT(addresses(QStringLiteral("12  Street")), ElementsAre("12  Street"));
    EXPECT_THAT(addresses(QStringLiteral("12Main Street")), IsEmpty());
    // The end of the word is a street word by itself.
    EXPECT_THAT(addresses(QStringLiteral("12 Boulevard")), ElementsAre("12 Boulevard"));
}

TEST(InformationExtractionTest, PrefersTheLongerStreetWordOfOnePlace)
{
    EXPECT_THAT(addresses(QStringLiteral("1 A Streets")), ElementsAre("1 A Street"));
    EXPECT_THAT(addresses(QStringLiteral("1 A Stre")), ElementsAre("1 A St"));
    EXPECT_THAT(addresses(QStringLiteral("1 A Aven")), ElementsAre("1 A Ave"));
}

TEST(InformationExtractionTest, ReadsAllDigitsOfTheNumber)
{
    EXPECT_THAT(addresses(QStringLiteral("No. 123456 Oak Ln.")), ElementsAre("123456 Oak Ln."));
    EXPECT_THAT(addresses(QStringLiteral("1 2 Oak Ln")), ElementsAre("2 Oak Ln"));
}

// Snippets

TEST(InformationExtractionTest, PutsDotsAtBothEndsOfASnippetAlways)
{
    EXPECT_EQ(extractItems(u"$5", 0).at(0).sourceSnippet, QStringLiteral("...$5..."));
    EXPECT_EQ(extractItems(u"0 letters: $5", 0).at(0).sourceSnippet, QStringLiteral("...0 letters: $5..."));
}

TEST(InformationExtractionTest, ShowsFiftyUnitsOnEitherSide)
{
    const QString before = QString(60, QLatin1Char('b'));
    const QString after = QString(60, QLatin1Char('a'));
    const auto items = extractItems(before + QStringLiteral("$5") + after, 0);
    EXPECT_EQ(
        items.at(0).sourceSnippet, QStringLiteral("...") + before.left(50) + QStringLiteral("$5") +
                                       after.left(50) + QStringLiteral("..."));
}

TEST(InformationExtractionTest, CountsASnippetInUnitsThoughThatCutsAPair)
{
    const QString before = QStringLiteral("\U0001F600") + QString(49, QLatin1Char('b'));
    EXPECT_EQ(
        extractItems(before + QStringLiteral("$5"), 0).at(0).sourceSnippet,
        QStringLiteral("...") + before.mid(1) + QStringLiteral("$5..."));
}

TEST(InformationExtractionTest, PlacesASnippetRightBehindAnEmoji)
{
    EXPECT_EQ(
        extractItems(u"\U0001F600 $5 \U0001F600", 0).at(0).sourceSnippet,
        QStringLiteral("...\U0001F600 $5 \U0001F600..."));
}

TEST(InformationExtractionTest, ReplacesLineFeedsAloneInASnippet)
{
    const auto items = extractItems(u"\n\t\r\n$5\r\u2028\n ", 0);
    EXPECT_EQ(items.at(0).sourceSnippet, QStringLiteral("... \t\r $5\r\u2028  ..."));
}

} // namespace
} // namespace quillo
