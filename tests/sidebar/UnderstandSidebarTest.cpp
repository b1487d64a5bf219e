// SPDX-License-Identifier: AGPL-3.0-or-later
#include "sidebar/UnderstandSidebar.h"

#include "document/DocumentState.h"
#include "sidebar/ResultDrawer.h"
#include "support/Printing.h"
#include "support/RecordedAnalytics.h"
#include "support/Widgets.h"

#include <gtest/gtest.h>

#include <QPromise>
#include <QSignalSpy>
#include <QTest>

#include <memory>

namespace quillo {
namespace {

const QString feature = QStringLiteral("What is this document?");

class UnderstandSidebarTest : public testing::Test
{
protected:
    void show()
    {
        m_sidebar = std::make_unique<UnderstandSidebar>(&m_state, m_analytics.service());
        m_sidebar->resize(320, 700);
        m_sidebar->show();
        ASSERT_TRUE(QTest::qWaitFor([&] { return visibleButton(*m_sidebar, feature) != nullptr; }));
    }

    void openDocument(const QString& text)
    {
        m_state.setUrl(QUrl(QStringLiteral("file:///tmp/document.pdf")));
        PageTexts pages;
        pages.emplace_back(0, text, false, std::nullopt);
        m_state.setPageTexts(std::move(pages));
    }

    void openInvoice()
    {
        openDocument(QStringLiteral("INVOICE\ninvoice number 7\nSubtotal 10\nTax 1\nAmount due 11\n"));
    }

    void runFeature() { click(*m_sidebar, feature); }
    bool isFeatureEnabled() { return visibleButton(*m_sidebar, feature)->isEnabled(); }
    void runAgain()
    {
        const auto* drawer = m_sidebar->findChild<ResultDrawer*>();
        ASSERT_TRUE(QTest::qWaitFor([&] { return drawer->maximumHeight() == QWIDGETSIZE_MAX; }))
            << "the drawer is not open";
        click(*m_sidebar, QStringLiteral("Run again"));
    }
    bool isDrawerClosed()
    {
        return QTest::qWaitFor([&] { return m_sidebar->findChild<ResultDrawer*>()->isHidden(); });
    }

    RecordedAnalytics m_analytics;
    DocumentState m_state;
    std::unique_ptr<UnderstandSidebar> m_sidebar;
};

TEST_F(UnderstandSidebarTest, WaitsForADocument)
{
    show();
    EXPECT_TRUE(shows(*m_sidebar, QStringLiteral("Understand")));
    EXPECT_TRUE(shows(*m_sidebar, QStringLiteral("Open a document to begin")));
    EXPECT_TRUE(shows(*m_sidebar, QStringLiteral("AI Document Analysis")));
    EXPECT_FALSE(isFeatureEnabled());
    openInvoice();
    EXPECT_TRUE(shows(*m_sidebar, QStringLiteral("AI-powered document analysis")));
    EXPECT_TRUE(isFeatureEnabled());
    m_state.setUrl(std::nullopt);
    EXPECT_FALSE(isFeatureEnabled());
}

TEST_F(UnderstandSidebarTest, ClassifiesTheDocumentOnAClick)
{
    openInvoice();
    show();
    EXPECT_FALSE(m_state.insight());
    runFeature();
    EXPECT_TRUE(shows(*m_sidebar, QStringLiteral("Bill / Invoice")));
    EXPECT_TRUE(shows(*m_sidebar, QStringLiteral("Found 'amount due'")));
    ASSERT_TRUE(m_state.insight());
    EXPECT_EQ(m_state.insight()->documentType, DocumentInsight::DocumentType::bill);
    EXPECT_TRUE(m_state.insight()->extractedItems.empty());
}

TEST_F(UnderstandSidebarTest, IsProcessingFromTheClickToTheResult)
{
    openInvoice();
    show();
    QStringList changes;
    QObject::connect(&m_state, &DocumentState::didChange, m_sidebar.get(), [&](DocumentState::Field field) {
        if (field == DocumentState::Field::isProcessing)
            changes.append(m_state.isProcessing() ? QStringLiteral("begins") : QStringLiteral("ends"));
        else if (field == DocumentState::Field::insight)
            changes.append(QStringLiteral("result"));
    });
    runFeature();
    ASSERT_TRUE(QTest::qWaitFor([&] { return m_state.insight() && !m_state.isProcessing(); }));
    EXPECT_EQ(
        changes, (QStringList{QStringLiteral("begins"), QStringLiteral("result"), QStringLiteral("ends")}));
}

TEST_F(UnderstandSidebarTest, WritesTheCourseOfAClassificationToTheConsole)
{
    openInvoice();
    show();
    testing::internal::CaptureStdout();
    runFeature();
    const bool isDone = QTest::qWaitFor([&] { return m_state.insight() && !m_state.isProcessing(); });
    const std::string console = testing::internal::GetCapturedStdout();
    ASSERT_TRUE(isDone);
    EXPECT_EQ(
        console, "🔵 classifyDocument() called\n"
                 "DEBUG: Page texts count: 1\n"
                 "🔵 Starting classification task...\n"
                 "✅ Got insight: Bill / Invoice (37%)\n"
                 "DEBUG: Evidence count: 5\n"
                 "🔵 Setting insight on documentState...\n"
                 "✅ Insight set! documentState.insight is now: NOT NIL\n");
}

TEST_F(UnderstandSidebarTest, ReplacesAnEarlierInsightWhole)
{
    openInvoice();
    DocumentInsight earlier;
    earlier.summary = QStringLiteral("earlier");
    earlier.actionRequired.required = true;
    earlier.extractedItems.emplace_back();
    m_state.setInsight(earlier);
    show();
    // With a result at hand the row opens its drawer, and the drawer runs the feature.
    runFeature();
    runAgain();
    ASSERT_TRUE(QTest::qWaitFor(
        [&] { return m_state.insight()->documentType == DocumentInsight::DocumentType::bill; }));
    EXPECT_FALSE(m_state.insight()->actionRequired.required);
    EXPECT_TRUE(m_state.insight()->extractedItems.empty());
    EXPECT_NE(m_state.insight()->summary, QStringLiteral("earlier"));
}

TEST_F(UnderstandSidebarTest, OpensAndClosesTheResultByItsRow)
{
    openInvoice();
    show();
    runFeature();
    ASSERT_TRUE(shows(*m_sidebar, QStringLiteral("Bill / Invoice")));
    runFeature();
    EXPECT_TRUE(isDrawerClosed());
    runFeature();
    EXPECT_TRUE(shows(*m_sidebar, QStringLiteral("Bill / Invoice")));
}

TEST_F(UnderstandSidebarTest, ShowsTheWholeResultWhenTheDrawerIsOpen)
{
    openInvoice();
    show();
    runFeature();
    ASSERT_TRUE(shows(*m_sidebar, QStringLiteral("Bill / Invoice")));
    const auto* drawer = m_sidebar->findChild<ResultDrawer*>();
    EXPECT_TRUE(QTest::qWaitFor([&] { return drawer->maximumHeight() == QWIDGETSIZE_MAX; }));
    const QAbstractButton* last = visibleButton(*m_sidebar, QStringLiteral("Run again"));
    ASSERT_TRUE(last);
    EXPECT_TRUE(QTest::qWaitFor([&] { return last->geometry().bottom() < drawer->height(); }));
}

TEST_F(UnderstandSidebarTest, TakesTheResultAwayWithTheInsight)
{
    openInvoice();
    show();
    runFeature();
    ASSERT_TRUE(shows(*m_sidebar, QStringLiteral("Bill / Invoice")));
    m_state.setInsight(std::nullopt);
    EXPECT_TRUE(isDrawerClosed());
}

TEST_F(UnderstandSidebarTest, WaitsForTheTextThatIsStillBeingRead)
{
    m_state.setUrl(QUrl(QStringLiteral("file:///tmp/document.pdf")));
    show();
    QPromise<void> reading;
    reading.start();
    m_sidebar->setTextReading(reading.future());
    runFeature();
    EXPECT_TRUE(m_state.isProcessing());
    QCoreApplication::processEvents();
    EXPECT_FALSE(m_state.insight()) << "there is no text to classify yet";
    openInvoice();
    reading.finish();
    EXPECT_TRUE(shows(*m_sidebar, QStringLiteral("Bill / Invoice")));
}

TEST_F(UnderstandSidebarTest, KeepsTheResultOfAnAnalysisDuringWhichItWasHidden)
{
    openInvoice();
    show();
    runFeature();
    m_sidebar.reset();
    EXPECT_TRUE(QTest::qWaitFor([&] { return m_state.insight() && !m_state.isProcessing(); }));
    show();
    runFeature();
    EXPECT_TRUE(shows(*m_sidebar, QStringLiteral("Bill / Invoice"))) << "the result has outlived the panel";
}

TEST_F(UnderstandSidebarTest, KeepsTheInsightOfTheEarlierDocumentUntilItIsReplaced)
{
    openInvoice();
    show();
    runFeature();
    ASSERT_TRUE(shows(*m_sidebar, QStringLiteral("Bill / Invoice")));
    openDocument(QStringLiteral("Dear Sir, kind regards, best wishes, sincerely"));
    EXPECT_TRUE(shows(*m_sidebar, QStringLiteral("Bill / Invoice")));
    runAgain();
    EXPECT_TRUE(shows(*m_sidebar, QStringLiteral("Letter")));
}

TEST_F(UnderstandSidebarTest, RecordsTheUseOfItsFeatureAndItsCompletion)
{
    openInvoice();
    show();
    runFeature();
    ASSERT_TRUE(QTest::qWaitFor([&] { return m_analytics.types().size() == 2; }));
    EXPECT_EQ(
        m_analytics.types(),
        (QStringList{QStringLiteral("featureUsed"), QStringLiteral("classificationComplete")}));
    EXPECT_EQ(
        m_analytics.latest(EventType::featureUsed, QStringLiteral("feature")),
        QStringLiteral("classifyDocument"));
    const auto latest = [&](const char* key) {
        return m_analytics.latest(EventType::classificationComplete, QString::fromLatin1(key));
    };
    EXPECT_EQ(latest("type"), QStringLiteral("Bill / Invoice"));
    EXPECT_EQ(latest("confidence"), QVariant(m_state.insight()->confidence));
    EXPECT_EQ(latest("duration").typeId(), QMetaType::Double);
    EXPECT_GE(latest("duration").toDouble(), 0.0);
}

TEST_F(UnderstandSidebarTest, IsUsedWithTheKeyboard)
{
    openInvoice();
    show();
    QApplication::setActiveWindow(m_sidebar.get());
    QAbstractButton* row = visibleButton(*m_sidebar, feature);
    row->setFocus(Qt::TabFocusReason);
    ASSERT_TRUE(row->hasFocus());
    QTest::keyClick(row, Qt::Key_Space);
    EXPECT_TRUE(shows(*m_sidebar, QStringLiteral("Bill / Invoice")));
}

TEST_F(UnderstandSidebarTest, DescribesItsFeatureToAScreenReader)
{
    show();
    EXPECT_EQ(
        visibleButton(*m_sidebar, feature)->accessibleDescription(),
        QStringLiteral("Classify document type"));
}

} // namespace
} // namespace quillo
