// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "controls/LatePane.h"

#include <QFuture>

#include <optional>

namespace quillo {

class AnalyticsService;
class DocumentState;
class ExpandableFeatureButton;
class TextLabel;

/// The analysis panel at the right of a window: each feature runs one analyser over the document when it is
/// chosen and shows its result. Results are kept in the document state, where they outlive the panel.
class UnderstandSidebar : public LatePane
{
    Q_OBJECT

public:
    static constexpr int panelWidth = 320;

    enum class UnderstandFeature { documentType };

    /// The state must outlive the sidebar, the service all analyses that the sidebar starts.
    UnderstandSidebar(
        DocumentState* documentState, AnalyticsService& analyticsService, QWidget* parent = nullptr);

    /// Analyses that are started while the document's text is still being read wait for the end of that.
    void setTextReading(const QFuture<void>& reading);

protected:
    void makeContent() override;

private:
    void classifyDocument();
    void showResult(UnderstandFeature feature);
    void toggleExpanded(UnderstandFeature feature);
    void followDocument();
    void followProcessing();
    void followInsight();
    void followExpansion();

    DocumentState* const m_documentState;
    AnalyticsService& m_analyticsService;
    TextLabel* m_subtitle = nullptr;
    ExpandableFeatureButton* m_documentType = nullptr;

    /// The feature whose analysis ran last.
    std::optional<UnderstandFeature> m_activeFeature;
    /// The feature whose drawer is open.
    std::optional<UnderstandFeature> m_expandedFeature;
    QFuture<void> m_textReading;
};

} // namespace quillo
