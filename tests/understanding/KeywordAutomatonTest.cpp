// SPDX-License-Identifier: AGPL-3.0-or-later
#include "understanding/KeywordAutomaton.h"

#include "support/Printing.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <unicode/locid.h>
#include <unicode/unistr.h>

#include <QString>

#include <utility>
#include <vector>

namespace quillo {
namespace {

using Occurrence = std::pair<int, qsizetype>;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

std::vector<Occurrence> occurrences(std::vector<QStringView> keywords, QStringView text)
{
    std::vector<Occurrence> found;
    KeywordAutomaton(keywords).search(text, [&](std::uint32_t keyword, qsizetype end) {
        found.emplace_back(static_cast<int>(keyword), end);
    });
    return found;
}

TEST(KeywordAutomatonTest, FindsEveryOccurrenceWithTheOffsetAfterIt)
{
    EXPECT_THAT(occurrences({u"tax"}, u"tax syntax"), ElementsAre(Occurrence(0, 3), Occurrence(0, 10)));
}

TEST(KeywordAutomatonTest, FindsKeywordsThatStandInsideOthersOrOverlapThem)
{
    EXPECT_THAT(
        occurrences({u"invoice number", u"voice", u"number one", u"invoice"}, u"invoice number one"),
        UnorderedElementsAre(Occurrence(1, 7), Occurrence(3, 7), Occurrence(0, 14), Occurrence(2, 18)));
}

TEST(KeywordAutomatonTest, ReportsOverlappingOccurrencesOfOneKeyword)
{
    EXPECT_THAT(
        occurrences({u"aa"}, u"aaaa"), ElementsAre(Occurrence(0, 2), Occurrence(0, 3), Occurrence(0, 4)));
}

TEST(KeywordAutomatonTest, FallsBackToTheLongestBeginningThatIsStillOpen)
{
    EXPECT_THAT(occurrences({u"abac", u"bab"}, u"ababac"), ElementsAre(Occurrence(1, 4), Occurrence(0, 6)));
}

TEST(KeywordAutomatonTest, TellsEqualKeywordsApartByTheirPlaceInTheList)
{
    EXPECT_THAT(occurrences({u"by", u"by"}, u"BY"), UnorderedElementsAre(Occurrence(0, 2), Occurrence(1, 2)));
}

TEST(KeywordAutomatonTest, CountsOffsetsInTheLowerCasedCopy)
{
    EXPECT_THAT(occurrences({u"due"}, u"\u0130\u0130due"), ElementsAre(Occurrence(0, 7)));
}

TEST(KeywordAutomatonTest, ReadsTheDottedCapitalIAsAnIWithADotBehindIt)
{
    EXPECT_THAT(occurrences({u"fi", u"fin"}, u"F\u0130n"), ElementsAre(Occurrence(0, 2)));
}

TEST(KeywordAutomatonTest, ReadsTheKelvinSignAsAK)
{
    EXPECT_THAT(occurrences({u"checkbox"}, u"CHEC\u212ABOX"), ElementsAre(Occurrence(0, 8)));
}

TEST(KeywordAutomatonTest, DoesNotFoldWhatLowerCasingLeavesAlone)
{
    // The long s and the ligature of s and t are lower case already.
    EXPECT_THAT(occurrences({u"st"}, u"\u017Ft \uFB06"), IsEmpty());
}

TEST(KeywordAutomatonTest, EndsAtNoughtAndAtHalfAPair)
{
    constexpr char16_t text[] = {u'a', 0, u'a', u'b', 0xD83D, u'a', u'b', 0xDC00};
    EXPECT_THAT(occurrences({u"ab"}, QStringView(text, 8)), ElementsAre(Occurrence(0, 4), Occurrence(0, 7)));
}

/// What the search sees of a character: every unit by itself, as far as it is ASCII.
QString seenByAutomaton(QStringView text)
{
    static const QString alphabet = [] {
        QString units;
        for (char16_t unit = 0; unit < 128; ++unit) {
            if (unit < u'A' || unit > u'Z')
                units.append(QChar(unit));
        }
        return units;
    }();
    static const std::vector<QStringView> keywords = [] {
        std::vector<QStringView> letters;
        for (qsizetype i = 0; i < alphabet.size(); ++i)
            letters.push_back(QStringView(alphabet).mid(i, 1));
        return letters;
    }();
    static const KeywordAutomaton automaton(keywords);
    QString seen;
    automaton.search(text, [&](std::uint32_t keyword, qsizetype end) {
        seen.resize(end - 1, QChar(QChar::ReplacementCharacter));
        seen.append(alphabet[static_cast<qsizetype>(keyword)]);
    });
    return seen;
}

TEST(KeywordAutomatonTest, AgreesWithFullLowerCasingOnEveryCharacter)
{
    for (char32_t character = 0; character <= 0x10FFFF; ++character) {
        // The letter behind shows whether the character changed its length.
        const QString text = QString::fromUcs4(&character, 1) + QLatin1Char('.');
        icu::UnicodeString lower(
            reinterpret_cast<const char16_t*>(text.utf16()), static_cast<int>(text.size()));
        lower.toLower(icu::Locale::getRoot());
        QString expected(reinterpret_cast<const QChar*>(lower.getBuffer()), lower.length());
        for (QChar& unit : expected) {
            if (unit.unicode() >= 128)
                unit = QChar::ReplacementCharacter;
        }
        ASSERT_EQ(seenByAutomaton(text), expected)
            << "U+" << std::hex << static_cast<std::uint32_t>(character);
    }
}

} // namespace
} // namespace quillo
