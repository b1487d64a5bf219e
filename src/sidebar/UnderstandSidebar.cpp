// SPDX-License-Identifier: AGPL-3.0-or-later
#include "sidebar/UnderstandSidebar.h"

#include "analytics/AnalyticsService.h"
#include "controls/QuietScrollBar.h"
#include "controls/Separator.h"
#include "controls/TextLabel.h"
#include "document/DocumentState.h"
#include "platform/Console.h"
#include "platform/Symbols.h"
#include "sidebar/DocumentTypeResultView.h"
#include "sidebar/ExpandableFeatureButton.h"
#include "understanding/DocumentClassifier.h"

#include <QElapsedTimer>
#include <QPointer>
#include <QScrollArea>
#include <QVBoxLayout>

#include <utility>

namespace quillo {
namespace {

/// The duration is in seconds.
void recordCompletion(
    AnalyticsService& analyticsService, EventType type, QVariantMap metadata, const QElapsedTimer& sinceStart)
{
    metadata.insert(QStringLiteral("duration"), static_cast<double>(sinceStart.nsecsElapsed()) / 1e9);
    analyticsService.trackEvent(type, metadata);
}

} // namespace

UnderstandSidebar::UnderstandSidebar(
    DocumentState* documentState, AnalyticsService& analyticsService, QWidget* parent)
    : LatePane(parent)
    , m_documentState(documentState)
    , m_analyticsService(analyticsService)
    , m_textReading(QtFuture::makeReadyFuture())
{
    setFixedWidth(panelWidth);
}

void UnderstandSidebar::makeContent()
{
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);

    auto* header = new QVBoxLayout;
    header->setContentsMargins(16, 12, 16, 12);
    header->setSpacing(2);
    header->addWidget(new TextLabel(tr("Understand"), TextStyle::headline));
    m_subtitle = new TextLabel(QString(), TextStyle::caption, ThemeColor::secondaryText);
    header->addWidget(m_subtitle);
    column->addLayout(header);
    column->addWidget(new Separator(Qt::Horizontal));

    auto* list = new QWidget;
    auto* features = new QVBoxLayout(list);
    features->setContentsMargins(16, 16, 16, 16);
    features->setSpacing(12);
    features->addWidget(
        new TextLabel(tr("AI Document Analysis"), TextStyle::caption, ThemeColor::secondaryText));
    m_documentType = new ExpandableFeatureButton(
        Symbol::docTextMagnifyingglass, tr("What is this document?"), tr("Classify document type"));
    connect(m_documentType, &ExpandableFeatureButton::action, this, &UnderstandSidebar::classifyDocument);
    connect(m_documentType, &ExpandableFeatureButton::toggleExpanded, this, [this] {
        toggleExpanded(UnderstandFeature::documentType);
    });
    features->addWidget(m_documentType);
    features->addStretch();

    auto* scrolling = new QScrollArea;
    scrolling->setFrameShape(QFrame::NoFrame);
    scrolling->setWidgetResizable(true);
    scrolling->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scrolling->setVerticalScrollBar(new QuietScrollBar(Qt::Vertical));
    scrolling->setFocusPolicy(Qt::NoFocus);
    scrolling->setWidget(list);
    column->addWidget(scrolling, 1);

    connect(m_documentState, &DocumentState::didChange, this, [this](DocumentState::Field field) {
        if (field == DocumentState::Field::url)
            followDocument();
        else if (field == DocumentState::Field::isProcessing)
            followProcessing();
        else if (field == DocumentState::Field::insight)
            followInsight();
    });
    followDocument();
    followInsight();
    followProcessing();
}

void UnderstandSidebar::setTextReading(const QFuture<void>& reading)
{
    m_textReading = reading;
}

void UnderstandSidebar::classifyDocument()
{
    printLine(QStringLiteral("🔵 classifyDocument() called"));
    printLine(QStringLiteral("DEBUG: Page texts count: %1").arg(m_documentState->pageTexts()->size()));
    m_activeFeature = UnderstandFeature::documentType;
    m_documentState->setIsProcessing(true);
    m_analyticsService.trackEvent(
        EventType::featureUsed, {{QStringLiteral("feature"), QStringLiteral("classifyDocument")}});
    QElapsedTimer sinceStart;
    sinceStart.start();

    // Results go into the state even when the sidebar is hidden meanwhile.
    DocumentState* state = m_documentState;
    const auto apply = [state, sinceStart, analytics = &m_analyticsService,
                        sidebar = QPointer(this)](DocumentInsight insight) {
        printLine(QStringLiteral("✅ Got insight: %1 (%2%)")
                      .arg(rawValue(insight.documentType))
                      .arg(static_cast<int>(insight.confidence * 100)));
        printLine(QStringLiteral("DEBUG: Evidence count: %1").arg(insight.evidence.size()));
        const QVariantMap outcome{
            {QStringLiteral("type"), rawValue(insight.documentType)},
            {QStringLiteral("confidence"), insight.confidence}};
        printLine(QStringLiteral("🔵 Setting insight on documentState..."));
        state->setInsight(std::move(insight));
        if (sidebar)
            sidebar->showResult(UnderstandFeature::documentType);
        state->setIsProcessing(false);
        printLine(QStringLiteral("✅ Insight set! documentState.insight is now: %1")
                      .arg(state->insight() ? u"NOT NIL" : u"NIL"));
        recordCompletion(*analytics, EventType::classificationComplete, outcome, sinceStart);
    };
    m_textReading.then(state, [state, apply] {
        printLine(QStringLiteral("🔵 Starting classification task..."));
        auto classification = DocumentClassifier::shared().classifyDocument(*state);
        classification.then(state, apply);
    });
}

void UnderstandSidebar::showResult(UnderstandFeature feature)
{
    m_expandedFeature = feature;
    followExpansion();
}

void UnderstandSidebar::toggleExpanded(UnderstandFeature feature)
{
    if (m_expandedFeature == feature)
        m_expandedFeature.reset();
    else
        m_expandedFeature = feature;
    followExpansion();
}

void UnderstandSidebar::followDocument()
{
    const bool isOpen = m_documentState->url().has_value();
    m_subtitle->setText(isOpen ? tr("AI-powered document analysis") : tr("Open a document to begin"));
    m_documentType->setDisabled(!isOpen);
}

void UnderstandSidebar::followProcessing()
{
    m_documentType->setProcessing(
        m_documentState->isProcessing() && m_activeFeature == UnderstandFeature::documentType);
}

void UnderstandSidebar::followInsight()
{
    const auto& insight = m_documentState->insight();
    m_documentType->setResultContent(insight ? new DocumentTypeResultView(*insight) : nullptr);
}

void UnderstandSidebar::followExpansion()
{
    m_documentType->setExpanded(m_expandedFeature == UnderstandFeature::documentType);
}

} // namespace quillo
