// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <QStringView>
#include <QWidget>

namespace quillo {

class FeatureHeader;
class ResultDrawer;

/// A feature of the sidebar as a card: a row that runs the feature, and a drawer below it that shows the
/// result. While there is a result, the row opens and closes the drawer, and "Run again" in the drawer runs
/// the feature anew.
class ExpandableFeatureButton : public QWidget
{
    Q_OBJECT

public:
    /// The icon is a symbol's name and must outlive the button.
    ExpandableFeatureButton(QStringView icon, const QString& title, const QString& description);

    void setDisabled(bool disabled);
    void setProcessing(bool processing);
    void setExpanded(bool expanded);
    /// The content of the drawer, which the button takes; null while there is no result.
    void setResultContent(QWidget* content);
    bool hasResults() const { return m_hasResults; }

Q_SIGNALS:
    /// Run the feature.
    void action();
    /// Open or close the drawer.
    void toggleExpanded();

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    FeatureHeader* m_header;
    ResultDrawer* m_drawer;
    bool m_hasResults = false;
};

} // namespace quillo
