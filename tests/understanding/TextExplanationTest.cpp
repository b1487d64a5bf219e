// SPDX-License-Identifier: AGPL-3.0-or-later
#include "understanding/TextExplanation.h"

#include "support/Printing.h"

#include <gtest/gtest.h>

namespace quillo {
namespace {

const QString legal = QStringLiteral("This appears to be legal or formal language.");
const QString financial = QStringLiteral("This text discusses financial or payment terms.");
const QString obligations = QStringLiteral("This text describes obligations or requirements.");
const QString timeSensitive = QStringLiteral("This text includes time-sensitive information.");
const QString nothingFound = QStringLiteral(
    "This is the selected text from your document. Without advanced language processing, detailed "
    "explanation is limited. Consider the context within the document.");

QString analysis(const QString& sentences)
{
    return QStringLiteral("Analysis: ") + sentences +
           QStringLiteral(
               "\n\nNote: This is a basic analysis. True explanation would require advanced language "
               "understanding capabilities.");
}

TEST(TextExplanationTest, ReadsALegalPassageInPlainerWords)
{
    const QString passage = QStringLiteral("Pursuant to clause 4 the tenant shall pay within ten days.");
    const ExplanationResult result = explainText(passage);
    EXPECT_EQ(result.originalText, passage);
    EXPECT_EQ(
        result.simplified, QStringLiteral("according to clause 4 the tenant shall pay within ten days."));
    EXPECT_EQ(
        result.explanation,
        analysis(legal + QLatin1Char(' ') + obligations + QLatin1Char(' ') + timeSensitive));
}

TEST(TextExplanationTest, ReplacesHereinBeforeHereinafter)
{
    EXPECT_EQ(simplifyText(QStringLiteral("hereinafter")), QStringLiteral("in this documentafter"));
}

TEST(TextExplanationTest, ReplacesHereinWithinThereinToo)
{
    EXPECT_EQ(simplifyText(QStringLiteral("therein")), QStringLiteral("tin this document"));
}

TEST(TextExplanationTest, ReplacesInsideLongerWords)
{
    EXPECT_EQ(
        simplifyText(QStringLiteral("aggregates aggregated terminates")),
        QStringLiteral("totals totald ends"));
}

TEST(TextExplanationTest, ReplacesByLowerCaseWhateverTheCase)
{
    EXPECT_EQ(
        simplifyText(QStringLiteral("Whereas THEREOF HereTofore")), QStringLiteral("while of it until now"));
}

TEST(TextExplanationTest, ReplacesEveryPhraseThatNoEarlierOneTakesApart)
{
    EXPECT_EQ(
        simplifyText(QStringLiteral("pursuant to, notwithstanding, hereafter, herein, thereof, whereby, "
                                    "whereas, aforementioned, heretofore, commence, utilize, terminate, "
                                    "remuneration, aggregate")),
        QStringLiteral("according to, despite, from now on, in this document, of it, by which, while, "
                       "mentioned before, until now, begin, use, end, payment, total"));
}

TEST(TextExplanationTest, ReplacesEveryOccurrence)
{
    EXPECT_EQ(
        simplifyText(QStringLiteral("utilize\nUtilize utilizeutilize")), QStringLiteral("use\nuse useuse"));
}

TEST(TextExplanationTest, LeavesAllElseAsItIs)
{
    const QString around =
        QStringLiteral("\u0130\u00DF\u1E9E e\u0301 \u00E9 \uFB01 \U0001F600 \u202E\u05D0\u0391\u03A3 ");
    const QString broken = QString(QChar(0xD83D)) + QChar(0) + QChar(0xDE00);
    EXPECT_EQ(simplifyText(around + broken), around + broken);
    EXPECT_EQ(
        simplifyText(around + QStringLiteral("HEREIN") + broken + around),
        around + QStringLiteral("in this document") + broken + around);
}

TEST(TextExplanationTest, ReplacesPhrasesWithALongS)
{
    EXPECT_EQ(simplifyText(QStringLiteral("pur\u017Fuant to")), QStringLiteral("according to"));
}

TEST(TextExplanationTest, HasNothingToSayOnATextWithoutTriggers)
{
    const QString passage = QStringLiteral("The cat sat on the mat.");
    const ExplanationResult result = explainText(passage);
    EXPECT_EQ(result.explanation, nothingFound);
    EXPECT_EQ(result.simplified, passage);
}

TEST(TextExplanationTest, TakesAnEmptyPassage)
{
    const ExplanationResult result = explainText(QString());
    EXPECT_EQ(result.explanation, nothingFound);
    ASSERT_TRUE(result.simplified.has_value());
    EXPECT_EQ(*result.simplified, QString());
}

TEST(TextExplanationTest, FindsCompensationFinancialAndKeepsTheWord)
{
    const QString passage = QStringLiteral("Compensation is due.");
    EXPECT_EQ(generateBasicExplanation(passage), analysis(financial));
    EXPECT_EQ(simplifyText(passage), passage);
}

TEST(TextExplanationTest, FindsAnAggregateAmountFinancialButNoAggregateAlone)
{
    EXPECT_EQ(generateBasicExplanation(u"the AGGREGATE AMOUNT"), analysis(financial));
    EXPECT_EQ(generateBasicExplanation(u"the aggregate"), nothingFound);
}

TEST(TextExplanationTest, ListsAllCategoriesInTheirOrder)
{
    EXPECT_EQ(
        generateBasicExplanation(u"deadline must remuneration thereof"),
        analysis(
            legal + QLatin1Char(' ') + financial + QLatin1Char(' ') + obligations + QLatin1Char(' ') +
            timeSensitive));
}

TEST(TextExplanationTest, CountsTriggersInsideWords)
{
    EXPECT_EQ(generateBasicExplanation(u"mustard"), analysis(obligations));
    EXPECT_EQ(generateBasicExplanation(u"babysit with candidates"), analysis(timeSensitive));
    EXPECT_EQ(generateBasicExplanation(u"update nearby"), analysis(timeSensitive));
}

TEST(TextExplanationTest, NeedsBothByAndDate)
{
    EXPECT_EQ(generateBasicExplanation(u"stand by me"), nothingFound);
    EXPECT_EQ(generateBasicExplanation(u"date of birth"), nothingFound);
}

TEST(TextExplanationTest, LowerCasesThePassageForItsTriggers)
{
    EXPECT_EQ(generateBasicExplanation(u"SHALL"), analysis(obligations));
    // A long s is lower case as it is and no s.
    EXPECT_EQ(generateBasicExplanation(u"\u017Fhall"), nothingFound);
}

TEST(TextExplanationTest, TakesAHugePassage)
{
    const QString passage = QStringLiteral("aggregat").repeated(3'000'000) + QStringLiteral("Aggregate");
    const ExplanationResult result = explainText(passage);
    EXPECT_TRUE(result.simplified->endsWith(QStringLiteral("aggregattotal")));
}

} // namespace
} // namespace quillo
