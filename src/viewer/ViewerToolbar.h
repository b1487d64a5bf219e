// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "controls/LatePane.h"

#include <cstdint>

class QAction;
class QMenu;

namespace quillo {

class SymbolButton;
class TextLabel;

/// The row of controls above the pages.
class ViewerToolbar : public LatePane
{
    Q_OBJECT

public:
    explicit ViewerToolbar(QWidget* parent = nullptr);

    /// The current page is zero-based; shown one-based.
    void showPage(std::int64_t currentPage, std::int64_t totalPages);
    /// 1.0 is 100 %.
    void showZoomLevel(double zoomLevel);
    /// Whether there is something that can be printed.
    void setPrintable(bool isPrintable);

Q_SIGNALS:
    void previousPageRequested();
    void nextPageRequested();
    void zoomOutRequested();
    void zoomInRequested();
    void zoomToFitRequested();
    void rotateLeftRequested();
    void rotateRightRequested();
    void printRequested();

protected:
    void makeContent() override;

private:
    QMenu* makeDocumentMenu();
    void followPage();
    void followZoomLevel();

    std::int64_t m_currentPage = 0;
    std::int64_t m_totalPages = 0;
    double m_zoomLevel = 1.0;
    bool m_isPrintable = false;
    SymbolButton* m_previousPage = nullptr;
    TextLabel* m_pageLabel = nullptr;
    SymbolButton* m_nextPage = nullptr;
    TextLabel* m_zoomLabel = nullptr;
    QAction* m_print = nullptr;
};

} // namespace quillo
