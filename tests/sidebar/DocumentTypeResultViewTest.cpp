// SPDX-License-Identifier: AGPL-3.0-or-later
#include "sidebar/DocumentTypeResultView.h"

#include "controls/SymbolView.h"
#include "support/Printing.h"
#include "support/Widgets.h"

#include <gtest/gtest.h>

namespace quillo {
namespace {

using DocumentType = DocumentInsight::DocumentType;

struct Shown
{
    QString symbol;
    QStringList texts;
};

Shown shownFor(DocumentType type, double confidence, const QStringList& evidence = {})
{
    DocumentInsight insight;
    insight.documentType = type;
    insight.confidence = confidence;
    insight.evidence = evidence;
    DocumentTypeResultView view(insight);
    view.show();
    return {view.findChild<SymbolView*>()->symbol().toString(), visibleTexts(view)};
}

TEST(DocumentTypeResultViewTest, HasASymbolAndANameForEachType)
{
    const auto pair = [](DocumentType type) {
        const Shown shown = shownFor(type, 0.5);
        return std::pair(shown.symbol, shown.texts.value(0));
    };
    EXPECT_EQ(
        pair(DocumentType::bill), std::pair(QStringLiteral("doc.text"), QStringLiteral("Bill / Invoice")));
    EXPECT_EQ(pair(DocumentType::letter), std::pair(QStringLiteral("envelope"), QStringLiteral("Letter")));
    EXPECT_EQ(
        pair(DocumentType::form), std::pair(QStringLiteral("doc.on.clipboard"), QStringLiteral("Form")));
    EXPECT_EQ(
        pair(DocumentType::manual), std::pair(QStringLiteral("book"), QStringLiteral("Manual / Guide")));
    EXPECT_EQ(
        pair(DocumentType::unknown),
        std::pair(QStringLiteral("doc.questionmark"), QStringLiteral("Unknown")));
}

TEST(DocumentTypeResultViewTest, ListsConfidenceAndEvidence)
{
    EXPECT_EQ(
        shownFor(DocumentType::bill, 0.85, {QStringLiteral("Found 'invoice'"), QStringLiteral("Found 'tax'")})
            .texts,
        (QStringList{
            QStringLiteral("Bill / Invoice"), QStringLiteral("Confidence"), QStringLiteral("85%"),
            QStringLiteral("Evidence"), QStringLiteral("Found 'invoice'"), QStringLiteral("Found 'tax'")}));
}

TEST(DocumentTypeResultViewTest, ShowsAnUnknownTypeWithItsConfidence)
{
    EXPECT_EQ(
        shownFor(DocumentType::unknown, 0.0).texts,
        (QStringList{
            QStringLiteral("Unknown"), QStringLiteral("Confidence"), QStringLiteral("0%"),
            QStringLiteral("Evidence")}));
}

TEST(DocumentTypeResultViewTest, CutsThePercentage)
{
    EXPECT_EQ(shownFor(DocumentType::bill, 0.999).texts.value(2), QStringLiteral("99%"));
    EXPECT_EQ(shownFor(DocumentType::bill, 0.98).texts.value(2), QStringLiteral("98%"));
    EXPECT_EQ(shownFor(DocumentType::bill, 1.0).texts.value(2), QStringLiteral("100%"));
}

} // namespace
} // namespace quillo
