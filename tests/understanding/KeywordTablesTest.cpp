// SPDX-License-Identifier: AGPL-3.0-or-later
#include "understanding/DocumentClassification.h"
#include "understanding/TextExplanation.h"

#include "support/Printing.h"

#include <gtest/gtest.h>

#include <utility>
#include <vector>

// The tables of the analysers in so many words. What is searched for in a document is written out here once
// more, so that a slip of the pen in a table does not pass unnoticed.
namespace quillo {
namespace {

using DocumentType = DocumentInsight::DocumentType;

QStringList split(const char* words)
{
    return QString::fromUtf8(words).split(QLatin1Char('|'));
}

QStringList keywordsOf(DocumentType type)
{
    QStringList result;
    for (const DocumentTypeKeywords& table : documentTypeKeywords()) {
        if (table.type != type)
            continue;
        for (const QStringView keyword : table.keywords)
            result.append(keyword.toString());
    }
    return result;
}

TEST(KeywordTablesTest, ABillIsKnownByTheseWords)
{
    EXPECT_EQ(
        keywordsOf(DocumentType::bill),
        split("invoice|bill|amount due|total amount|payment due|invoice number|invoice date|subtotal|tax|"
              "balance due|account number|billing|charges|statement"));
}

TEST(KeywordTablesTest, ALetterIsKnownByTheseWords)
{
    EXPECT_EQ(
        keywordsOf(DocumentType::letter),
        split("dear|sincerely|regards|yours truly|best wishes|kind regards|to whom it may concern|dear sir|"
              "dear madam|cc:|bcc:|subject:"));
}

TEST(KeywordTablesTest, AFormIsKnownByTheseWords)
{
    EXPECT_EQ(
        keywordsOf(DocumentType::form),
        split("form|application|please complete|signature required|date of birth|social security|checkbox|"
              "check one|fill in|enter your|applicant|form number"));
}

TEST(KeywordTablesTest, AManualIsKnownByTheseWords)
{
    EXPECT_EQ(
        keywordsOf(DocumentType::manual),
        split("manual|guide|instructions|chapter|section|table of contents|appendix|introduction|overview|"
              "step 1|step 2|procedure|warning|caution|note:"));
}

TEST(KeywordTablesTest, TypesAreWeighedInThisOrder)
{
    std::vector<DocumentType> types;
    for (const DocumentTypeKeywords& table : documentTypeKeywords())
        types.push_back(table.type);
    EXPECT_EQ(
        types,
        (std::vector{DocumentType::bill, DocumentType::letter, DocumentType::form, DocumentType::manual}));
}

/// True when the explanation of the passage holds the sentence.
bool says(const QString& passage, const QString& sentence)
{
    return generateBasicExplanation(passage).contains(sentence);
}

TEST(KeywordTablesTest, TheExplanationIsTriggeredByTheseWordsAndNoShorterOnes)
{
    const std::vector<std::pair<QString, QStringList>> categories = {
        {QStringLiteral("This appears to be legal or formal language."),
         split("pursuant|notwithstanding|herein|thereof")},
        {QStringLiteral("This text discusses financial or payment terms."),
         split("remuneration|compensation|aggregate amount")},
        {QStringLiteral("This text describes obligations or requirements."), split("shall|must|required to")},
        {QStringLiteral("This text includes time-sensitive information."),
         split("within|deadline|by date|date by")},
    };
    for (const auto& [sentence, triggers] : categories) {
        for (const QString& trigger : triggers) {
            EXPECT_TRUE(says(trigger, sentence)) << trigger.toStdString();
            EXPECT_FALSE(says(trigger.mid(1), sentence)) << trigger.mid(1).toStdString();
            EXPECT_FALSE(says(trigger.chopped(1), sentence)) << trigger.chopped(1).toStdString();
            for (const auto& [other, words] : categories) {
                EXPECT_EQ(says(trigger, other), other == sentence) << trigger.toStdString();
            }
        }
    }
}

} // namespace
} // namespace quillo
