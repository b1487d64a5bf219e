// SPDX-License-Identifier: AGPL-3.0-or-later
#include "understanding/ActionDetector.h"
#include "understanding/DocumentClassifier.h"
#include "understanding/InformationExtractor.h"
#include "understanding/TextExplainer.h"

#include "support/Printing.h"

#include <gtest/gtest.h>

#include <QObject>
#include <QTest>
#include <QThread>

#include <memory>
#include <optional>

namespace quillo {
namespace {

PageTexts pagesOf(const QStringList& texts)
{
    PageTexts pages;
    for (const QString& text : texts)
        pages.emplace_back(static_cast<std::int64_t>(pages.size()), text, false, std::nullopt);
    return pages;
}

TEST(AnalyserActorsTest, ClassifiesTheTextOfAllPagesTogether)
{
    DocumentState state;
    state.setPageTexts(pagesOf({QStringLiteral("Invoice"), QString(), QStringLiteral("Tax and charges")}));
    const DocumentInsight insight = DocumentClassifier::shared().classifyDocument(state).result();
    EXPECT_EQ(insight.documentType, DocumentInsight::DocumentType::bill);
    EXPECT_EQ(insight.evidence.size(), 3);
}

TEST(AnalyserActorsTest, DoesNotFindAKeywordAcrossPages)
{
    DocumentState state;
    state.setPageTexts(pagesOf({QStringLiteral("invo"), QStringLiteral("ice tax charges")}));
    EXPECT_EQ(
        DocumentClassifier::shared().classifyDocument(state).result().documentType,
        DocumentInsight::DocumentType::unknown);
}

TEST(AnalyserActorsTest, ExtractsPageAfterPage)
{
    DocumentState state;
    state.setPageTexts(pagesOf({QStringLiteral("$5 on 1/2/2024"), QStringLiteral("$6 on 3/4/2024")}));
    const auto items = InformationExtractor::shared().extractInformation(state).result();
    ASSERT_EQ(items.size(), 4U);
    EXPECT_EQ(items[0].value, QStringLiteral("1/2/2024"));
    EXPECT_EQ(items[1].value, QStringLiteral("$5"));
    EXPECT_EQ(items[1].pageNumber, 0);
    EXPECT_EQ(items[2].value, QStringLiteral("3/4/2024"));
    EXPECT_EQ(items[3].pageNumber, 1);
}

TEST(AnalyserActorsTest, DetectsActionsInTheGivenZoneAndLocale)
{
    DocumentState state;
    state.setPageTexts(pagesOf({QStringLiteral("deadline 1/2/2024")}));
    const DateSettings settings{QTimeZone("Asia/Tokyo"), QLocale(QStringLiteral("en_GB"))};
    const auto actions = ActionDetector::shared().detectActions(state, settings).result();
    ASSERT_EQ(actions.reasons.size(), 1U);
    EXPECT_EQ(actions.reasons[0].description, QStringLiteral("Due date found: 2 Jan 2024"));
    EXPECT_EQ(actions.reasons[0].dueDate->toDateTime(), QDateTime(QDate(2024, 1, 1), QTime(15, 0), Qt::UTC));
}

TEST(AnalyserActorsTest, DetectsActionsWithTheUsersOwnSettings)
{
    DocumentState state;
    state.setPageTexts(pagesOf({QStringLiteral("deadline 1/2/2024")}));
    const auto actions = ActionDetector::shared().detectActions(state).result();
    ASSERT_EQ(actions.reasons.size(), 1U);
    EXPECT_EQ(
        actions.reasons[0].dueDate,
        PointInTime::of(QDate(2024, 1, 2).startOfDay(QTimeZone::systemTimeZone())));
}

TEST(AnalyserActorsTest, ExplainsAPassage)
{
    const auto result = TextExplainer::shared().explainText(QStringLiteral("Utilize")).result();
    EXPECT_EQ(result.originalText, QStringLiteral("Utilize"));
    EXPECT_EQ(result.simplified, QStringLiteral("use"));
}

TEST(AnalyserActorsTest, ReadsThePagesOfTheMomentOfTheCall)
{
    auto state = std::make_unique<DocumentState>();
    state->setPageTexts(pagesOf({QStringLiteral("$5").repeated(100'000)}));
    const auto items = InformationExtractor::shared().extractInformation(*state);
    state->setPageTexts(PageTexts());
    state.reset();
    EXPECT_EQ(items.result().size(), 100'000U);
}

TEST(AnalyserActorsTest, ComesBackToTheCallersThread)
{
    DocumentState state;
    QObject context;
    QThread* thread = nullptr;
    DocumentClassifier::shared().classifyDocument(state).then(
        &context, [&](const DocumentInsight&) { thread = QThread::currentThread(); });
    EXPECT_TRUE(QTest::qWaitFor([&] { return thread != nullptr; }));
    EXPECT_EQ(thread, QThread::currentThread());
}

} // namespace
} // namespace quillo
