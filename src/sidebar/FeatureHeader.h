// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <QAbstractButton>
#include <QStringView>

namespace quillo {

class BusyIndicator;
class SymbolView;
class TextLabel;

/// The row of a feature that is always visible: symbol, title and description, and a chevron that tells
/// whether its drawer is open.
class FeatureHeader : public QAbstractButton
{
    Q_OBJECT

public:
    /// The symbol's name must outlive the row.
    FeatureHeader(QStringView symbol, const QString& title, const QString& description);

    void setDescription(const QString& description);
    void setExpanded(bool expanded);
    void setProcessing(bool processing);

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void followState();

    SymbolView* m_symbol;
    TextLabel* m_title;
    TextLabel* m_description;
    BusyIndicator* m_busy;
    SymbolView* m_chevron;
    bool m_isExpanded = false;
};

} // namespace quillo
