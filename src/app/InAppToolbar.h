// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "controls/LatePane.h"

class QAction;
class QMenu;

namespace quillo {

class DocumentChip;
class DocumentState;
class SymbolButton;

/// The row at the top of a window: brand, menus, the open document and the window's own buttons. It owns the
/// actions of the menus; their shortcuts work in the whole window.
class InAppToolbar : public LatePane
{
    Q_OBJECT

public:
    /// The state must outlive the toolbar.
    explicit InAppToolbar(DocumentState* documentState, QWidget* parent = nullptr);

    /// Brings the toggles in line with the window.
    void setSidebarShown(bool shown);

Q_SIGNALS:
    void openDocumentRequested();
    void closeDocumentRequested();
    void sidebarToggled(bool shown);

protected:
    void makeContent() override;

private:
    QMenu* makeFileMenu();
    QMenu* makeViewMenu();
    void followDocument();
    void followSidebar();

    DocumentState* const m_documentState;
    bool m_isSidebarShown = false;
    DocumentChip* m_chip = nullptr;
    SymbolButton* m_sidebarButton = nullptr;
    QAction* m_closeDocument = nullptr;
    QAction* m_showSidebar = nullptr;
};

} // namespace quillo
