// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/TextPattern.h"
#include "support/Printing.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>

namespace pdf {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// What the pattern matches in the text, each match as it stands there.
std::vector<QString>
found(const char* pattern, const char* text, FindOptions options = FindOption::caseInsensitive)
{
    const QString searched = QString::fromUtf8(text);
    std::vector<QString> result;
    for (const TextRange range :
         TextPattern(QString::fromUtf8(pattern), options).matches(CompactText(searched)))
        result.push_back(searched.mid(range.location, range.length));
    return result;
}

std::vector<qsizetype> places(const char* pattern, const char* text)
{
    std::vector<qsizetype> result;
    const TextPattern compiled(QString::fromUtf8(pattern), FindOption::caseInsensitive);
    for (const TextRange range : compiled.matches(CompactText(QString::fromUtf8(text))))
        result.push_back(range.location);
    return result;
}

QString text(const char* utf8)
{
    return QString::fromUtf8(utf8);
}

TEST(TextPatternTest, FindsEveryOccurrenceInOrder)
{
    EXPECT_THAT(places("an", "A banana and an ant"), ElementsAre(3, 5, 9, 13, 16));
}

TEST(TextPatternTest, MatchesDoNotOverlap)
{
    EXPECT_THAT(places("aa", "aaaaa"), ElementsAre(0, 2));
    EXPECT_THAT(places("abab", "abababab"), ElementsAre(0, 4));
}

TEST(TextPatternTest, IsFoundAfterAFalseStart)
{
    EXPECT_THAT(places("aab", "aaaab"), ElementsAre(2));
    EXPECT_THAT(places("ababc", "abababc"), ElementsAre(2));
}

TEST(TextPatternTest, IgnoresCaseOnlyWhenAskedTo)
{
    EXPECT_THAT(found("TOTAL", "Total: total"), ElementsAre(text("Total"), text("total")));
    EXPECT_THAT(found("total", "Total: total", {}), ElementsAre(text("total")));
}

TEST(TextPatternTest, IgnoresCaseInAllScripts)
{
    EXPECT_THAT(found("ÉCLAIR", "un éclair"), ElementsAre(text("éclair")));
    EXPECT_THAT(found("завтрак", "Завтрак ЗАВТРАК"), ElementsAre(text("Завтрак"), text("ЗАВТРАК")));
    EXPECT_THAT(found("ΟΔΟΣ", "η οδός; οδοσ οδος"), ElementsAre(text("οδοσ"), text("οδος")));
    EXPECT_THAT(found("𐐀", "x𐐨y"), ElementsAre(text("𐐨")));
}

TEST(TextPatternTest, FoldsToSeveralCharacters)
{
    EXPECT_THAT(found("strasse", "Straße, STRASSE"), ElementsAre(text("Straße"), text("STRASSE")));
    EXPECT_THAT(found("STRAẞE", "Straße strasse"), ElementsAre(text("Straße"), text("strasse")));
    EXPECT_THAT(found("EFFICIENT", "eﬃcient"), ElementsAre(text("eﬃcient")));
    EXPECT_THAT(found("ᾳδης", "ΑΙΔΗΣ ᾼδης"), ElementsAre(text("ΑΙΔΗΣ"), text("ᾼδης")));
    EXPECT_THAT(found("և", "ԵՒ"), ElementsAre(text("ԵՒ")));
}

TEST(TextPatternTest, NeverMatchesAPartOfACharacter)
{
    EXPECT_THAT(found("s", "ß"), IsEmpty());
    EXPECT_THAT(found("stras", "Straße"), IsEmpty());
    EXPECT_THAT(found("f", "eﬃcient"), IsEmpty());
    EXPECT_THAT(found("ss", "ßß"), ElementsAre(text("ß"), text("ß")));
    EXPECT_THAT(found("ssss", "ßß"), ElementsAre(text("ßß")));
    EXPECT_THAT(found("sss", "ßs ßß"), ElementsAre(text("ßs")));
}

TEST(TextPatternTest, FindsTheTurkishCapitalIByItsSmallLetter)
{
    EXPECT_THAT(found("istanbul", "İstanbul ISTANBUL i̇stanbul").size(), testing::Eq(3U));
    EXPECT_THAT(found("İSTANBUL", "istanbul"), ElementsAre(text("istanbul")));
    EXPECT_THAT(found("ısı", "isi ısı"), ElementsAre(text("ısı")));
}

TEST(TextPatternTest, TakesComposedAndDecomposedLettersForTheSame)
{
    EXPECT_THAT(found("résumé", "re\u0301sume\u0301"), ElementsAre(text("re\u0301sume\u0301")));
    EXPECT_THAT(found("re\u0301sume\u0301", "RÉSUMÉ"), ElementsAre(text("RÉSUMÉ")));
    EXPECT_THAT(found("Việt", "Vie\u0302\u0323t Vie\u0323\u0302t").size(), testing::Eq(2U));
    EXPECT_THAT(found("Å", "\u212B"), ElementsAre(text("\u212B")));
    EXPECT_THAT(found("한글", "\u1112\u1161\u11ab\u1100\u1173\u11af").size(), testing::Eq(1U));
}

TEST(TextPatternTest, TellsALetterFromTheSameWithAMark)
{
    EXPECT_THAT(found("resume", "résumé re\u0301sume\u0301"), IsEmpty());
    EXPECT_THAT(found("e", "e\u0301 x\u0301e"), ElementsAre(text("e")));
    EXPECT_THAT(found("x", "x\u0301"), IsEmpty());
}

TEST(TextPatternTest, MatchesAnyRunOfWhiteSpaceWithAny)
{
    EXPECT_THAT(found("the end", "the end, the   end, the\nend, the \n end, theend").size(), testing::Eq(4U));
    EXPECT_THAT(found("the \t\u00a0 end", "the\nend"), ElementsAre(text("the\nend")));
    EXPECT_THAT(found("e  e", "the  \n end"), ElementsAre(text("e  \n e")));
}

TEST(TextPatternTest, FindsEachRunOfWhiteSpaceOnce)
{
    EXPECT_THAT(places(" ", "a  b\n c"), ElementsAre(1, 4));
    EXPECT_THAT(found("b ", "a  b\n c"), ElementsAre(text("b\n")));
    EXPECT_THAT(found(" c", "a  b\n c"), ElementsAre(text("\n c")));
}

TEST(TextPatternTest, IgnoresSoftHyphens)
{
    EXPECT_THAT(found("infor\u00admation", "information"), ElementsAre(text("information")));
    EXPECT_THAT(found("information", "infor\u00admation"), ElementsAre(text("infor\u00admation")));
}

TEST(TextPatternTest, FindsAWordThatIsDividedAtTheEndOfALine)
{
    EXPECT_THAT(found("information", "some infor-\nmation"), ElementsAre(text("infor-\nmation")));
    EXPECT_THAT(found("information", "infor\u2010\nmation"), ElementsAre(text("infor\u2010\nmation")));
    EXPECT_THAT(found("information", "infor\u00ad\nmation"), ElementsAre(text("infor\u00ad\nmation")));
    EXPECT_THAT(found("well-known", "a well-\nknown way"), ElementsAre(text("well-\nknown")));
    EXPECT_THAT(found("wellknown", "a well-\nknown way"), ElementsAre(text("well-\nknown")));
    EXPECT_THAT(found("well- known", "a well-\nknown way"), ElementsAre(text("well-\nknown")));
}

TEST(TextPatternTest, KeepsTheOrderWhereDividedWordsAreAmongOthers)
{
    EXPECT_THAT(places("data", "data da-\nta data da-\nta"), ElementsAre(0, 5, 12, 17));
}

TEST(TextPatternTest, IsNowhereWhenItIsEmpty)
{
    EXPECT_TRUE(TextPattern(QString(), {}).isEmpty());
    EXPECT_TRUE(TextPattern(QString(QChar(0xAD)), {}).isEmpty());
    EXPECT_THAT(found("", "anything"), IsEmpty());
    EXPECT_THAT(found("anything", ""), IsEmpty());
}

TEST(TextPatternTest, SearchesTextsOfAllScriptsAlike)
{
    // The same with and without characters beyond Latin-1, which are kept differently.
    EXPECT_THAT(places("gruß", "Ein Gruß, GRUSS"), ElementsAre(4, 10));
    EXPECT_THAT(places("gruß", "Ein Gruß, GRUSS, 你好"), ElementsAre(4, 10));
    EXPECT_THAT(places("你好", "Ein Gruß, 你好"), ElementsAre(10));
}

TEST(TextPatternTest, TakesLinearTimeForHostileTexts)
{
    // A search that starts anew at each place would take some 10^11 steps.
    const QString searched(2'000'000, QLatin1Char('a'));
    const QString pattern = QString(100'000, QLatin1Char('a')) + QLatin1Char('b');
    EXPECT_THAT(TextPattern(pattern, FindOption::caseInsensitive).matches(CompactText(searched)), IsEmpty());
    QString divided;
    for (int i = 0; i < 300'000; ++i)
        divided += QStringLiteral("a-\n");
    EXPECT_THAT(TextPattern(pattern, FindOption::caseInsensitive).matches(CompactText(divided)), IsEmpty());
}

} // namespace
} // namespace pdf
