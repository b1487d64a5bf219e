// SPDX-License-Identifier: AGPL-3.0-or-later
#include "understanding/DocumentClassification.h"

#include "support/Printing.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <unicode/locid.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <random>
#include <vector>

namespace quillo {
namespace {

using DocumentType = DocumentInsight::DocumentType;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char16_t* unknownSummary = u"Could not determine document type with confidence";

QString joined(const QStringList& words)
{
    return words.join(QLatin1String(" | "));
}

TEST(DocumentClassificationTest, WeighsRepeatedAndSingleKeywordsOfABill)
{
    const auto insight = classifyText(u"INVOICE from us. Total Amount below. Invoice, invoice! Tax");
    EXPECT_EQ(insight.documentType, DocumentType::bill);
    EXPECT_DOUBLE_EQ(insight.confidence, (1.4 + 1 + 1) / 14);
    EXPECT_THAT(
        insight.evidence, ElementsAre(
                              QStringLiteral("Found 'invoice'"), QStringLiteral("Found 'total amount'"),
                              QStringLiteral("Found 'tax'")));
    EXPECT_EQ(
        insight.summary,
        QStringLiteral("This appears to be a bill or invoice (24% confidence). It likely contains payment "
                       "information and amounts due."));
}

TEST(DocumentClassificationTest, HoldsNoActionsAndNoItems)
{
    const auto insight = classifyText(u"invoice, tax, subtotal; please sign, amount due $5");
    EXPECT_EQ(insight.documentType, DocumentType::bill);
    EXPECT_FALSE(insight.actionRequired.required);
    EXPECT_TRUE(insight.actionRequired.reasons.empty());
    EXPECT_TRUE(insight.extractedItems.empty());
}

TEST(DocumentClassificationTest, KeepsTheFirstFiveLinesOfEvidenceInTableOrder)
{
    const auto insight = classifyText(u"Subject: x; bcc: y; cc: z; Dear Sir, kind regards, sincerely");
    EXPECT_EQ(insight.documentType, DocumentType::letter);
    EXPECT_THAT(
        insight.evidence, ElementsAre(
                              QStringLiteral("Found 'dear'"), QStringLiteral("Found 'sincerely'"),
                              QStringLiteral("Found 'regards'"), QStringLiteral("Found 'kind regards'"),
                              QStringLiteral("Found 'dear sir'")));
    // Eight keywords count, although five are listed; "cc:" occurs within "bcc:" as well.
    EXPECT_DOUBLE_EQ(insight.confidence, (8 + 0.2) / 12);
}

TEST(DocumentClassificationTest, KeepsFiveLinesOfEvidenceWhenThereAreFive)
{
    EXPECT_EQ(classifyText(u"manual guide instructions chapter section").evidence.size(), 5);
}

TEST(DocumentClassificationTest, FindsNothingInAnEmptyText)
{
    const auto insight = classifyText(QStringView());
    EXPECT_EQ(insight.documentType, DocumentType::unknown);
    EXPECT_EQ(insight.confidence, 0.0);
    EXPECT_THAT(insight.evidence, IsEmpty());
    EXPECT_EQ(insight.summary, QString::fromUtf16(unknownSummary));
    EXPECT_FALSE(insight.actionRequired.required);
}

TEST(DocumentClassificationTest, TakesThreeBillKeywordsForABill)
{
    const auto insight = classifyText(u"subtotal, tax, charges");
    EXPECT_EQ(insight.documentType, DocumentType::bill);
    EXPECT_THAT(insight.summary.toStdString(), testing::HasSubstr("(21% confidence)"));
}

TEST(DocumentClassificationTest, DoesNotTakeAScoreOfExactlyAFifth)
{
    const auto insight = classifyText(u"chapter, appendix, overview");
    EXPECT_EQ(insight.documentType, DocumentType::unknown);
    EXPECT_EQ(insight.confidence, 0.0);
    EXPECT_THAT(insight.evidence, IsEmpty());
}

TEST(DocumentClassificationTest, DoesNotTakeTwoLetterOrFormKeywords)
{
    EXPECT_EQ(classifyText(u"sincerely subject:").documentType, DocumentType::unknown);
    EXPECT_EQ(classifyText(u"checkbox, fill in").documentType, DocumentType::unknown);
}

TEST(DocumentClassificationTest, FindsKeywordsInsideWords)
{
    // "form" in "information", "tax" in "syntax", "bill" in "billing".
    const auto insight = classifyText(u"syntax billing charges");
    EXPECT_THAT(
        insight.evidence, ElementsAre(
                              QStringLiteral("Found 'bill'"), QStringLiteral("Found 'tax'"),
                              QStringLiteral("Found 'billing'"), QStringLiteral("Found 'charges'")));
}

double scoreOfRepeated(int times)
{
    // With two more bill keywords the score is above the threshold.
    return classifyText(QStringLiteral("subtotal charges ") + QStringLiteral("tax ").repeated(times))
                   .confidence *
               14 -
           2;
}

TEST(DocumentClassificationTest, ScoresARepeatedKeywordOnlyUpToFourOccurrences)
{
    EXPECT_NEAR(scoreOfRepeated(1), 1.0, 1e-9);
    EXPECT_NEAR(scoreOfRepeated(2), 1.2, 1e-9);
    EXPECT_NEAR(scoreOfRepeated(3), 1.4, 1e-9);
    EXPECT_NEAR(scoreOfRepeated(4), 1.6, 1e-9);
    EXPECT_NEAR(scoreOfRepeated(50), 1.6, 1e-9);
}

TEST(DocumentClassificationTest, CapsTheConfidenceAtOne)
{
    QString text;
    for (const QStringView keyword : documentTypeKeywords()[1].keywords)
        text += (keyword.toString() + QLatin1Char('\n')).repeated(4);
    const auto insight = classifyText(text);
    EXPECT_EQ(insight.documentType, DocumentType::letter);
    EXPECT_EQ(insight.confidence, 1.0);
    EXPECT_EQ(
        insight.summary,
        QStringLiteral("This appears to be a letter (100% confidence). It's likely correspondence or "
                       "communication."));
}

TEST(DocumentClassificationTest, LetsTheFirstOfEquallyGoodTypesWin)
{
    // Three of twelve keywords each.
    const auto insight = classifyText(u"checkbox, fill in, enter your; sincerely, best wishes, subject:");
    EXPECT_EQ(insight.documentType, DocumentType::letter);
}

TEST(DocumentClassificationTest, HasItsSentenceForEachType)
{
    EXPECT_EQ(
        generateSummary(DocumentType::form, 0.5),
        QStringLiteral("This appears to be a form (50% confidence). It may require filling out or signing."));
    EXPECT_EQ(
        generateSummary(DocumentType::manual, 0.999),
        QStringLiteral(
            "This appears to be a manual or guide (99% confidence). It likely contains instructions or "
            "reference information."));
    EXPECT_EQ(
        generateSummary(DocumentType::unknown, 0.7),
        QStringLiteral("Could not determine the document type with confidence."));
}

// The classification in so many words, one search and one split per keyword over a lower-cased copy.
DocumentInsight classifyLiterally(const QString& text)
{
    icu::UnicodeString lower(reinterpret_cast<const char16_t*>(text.utf16()), static_cast<int>(text.size()));
    lower.toLower(icu::Locale::getRoot());
    const QString lowered(reinterpret_cast<const QChar*>(lower.getBuffer()), lower.length());

    DocumentInsight best;
    double bestScore = -1;
    for (const DocumentTypeKeywords& table : documentTypeKeywords()) {
        double score = 0;
        QStringList evidence;
        for (const QStringView keyword : table.keywords) {
            if (!lowered.contains(keyword))
                continue;
            evidence.append(QStringLiteral("Found '%1'").arg(keyword));
            score += 1.0;
            const qsizetype pieces = lowered.split(keyword.toString()).size();
            if (pieces >= 3)
                score += static_cast<double>(std::min<qsizetype>(pieces, 5) - 2) * 0.2;
        }
        score /= static_cast<double>(table.keywords.size());
        if (score <= bestScore)
            continue;
        bestScore = score;
        best.documentType = table.type;
        best.evidence = evidence.mid(0, 5);
    }
    if (bestScore <= 0.2)
        return {DocumentType::unknown, 0.0, {}, {}, {}, QString::fromUtf16(unknownSummary)};
    best.confidence = std::min(bestScore, 1.0);
    best.summary = generateSummary(best.documentType, best.confidence);
    return best;
}

/// Texts of keywords, pieces of keywords and what may join them, upper and lower case mixed.
class RandomTexts
{
public:
    QString next()
    {
        const auto tables = documentTypeKeywords();
        const auto& table = tables[pick(tables.size())].keywords;
        QString text;
        const std::size_t pieces = 1 + pick(40);
        for (std::size_t i = 0; i < pieces; ++i) {
            const auto& source = pick(3) == 0 ? tables[pick(tables.size())].keywords : table;
            QString piece = source[pick(source.size())].toString();
            if (pick(3) == 0)
                piece = piece.mid(static_cast<qsizetype>(pick(static_cast<std::size_t>(piece.size()))));
            if (pick(3) == 0)
                piece.truncate(static_cast<qsizetype>(pick(static_cast<std::size_t>(piece.size()) + 1)));
            for (QChar& unit : piece)
                unit = changed(unit);
            text += piece;
            text += joints[pick(std::size(joints))];
        }
        return text;
    }

private:
    std::size_t pick(std::size_t count) { return m_random() % count; }

    QChar changed(QChar unit)
    {
        if (unit == QLatin1Char('k') && pick(4) == 0)
            return QChar(0x212A);
        if (unit == QLatin1Char('i') && pick(20) == 0)
            return QChar(0x0130);
        return pick(4) == 0 ? unit.toUpper() : unit;
    }

    static inline const QString joints[] = {
        QString(),
        QStringLiteral(" "),
        QStringLiteral("s"),
        QStringLiteral("\n\n"),
        QStringLiteral(":"),
        QStringLiteral("\u0130"),
        QStringLiteral("\u0391\u03A3"),
        QStringLiteral("\U0001F600"),
        QString(QChar(0xD800)),
        QString(QChar(0)),
    };

    std::mt19937 m_random{20240115};
};

TEST(DocumentClassificationTest, AgreesWithTheLiteralDescriptionOnRandomTexts)
{
    RandomTexts texts;
    int known = 0;
    for (int i = 0; i < 20'000; ++i) {
        const QString text = texts.next();
        const auto expected = classifyLiterally(text);
        const auto found = classifyText(text);
        ASSERT_EQ(found.documentType, expected.documentType) << text.toStdString();
        ASSERT_EQ(found.confidence, expected.confidence) << text.toStdString();
        ASSERT_EQ(joined(found.evidence), joined(expected.evidence)) << text.toStdString();
        ASSERT_EQ(found.summary, expected.summary) << text.toStdString();
        known += found.documentType != DocumentType::unknown;
    }
    // The texts must be of both sorts to tell anything.
    EXPECT_GT(known, 2000);
    EXPECT_LT(known, 18'000);
}

} // namespace
} // namespace quillo
