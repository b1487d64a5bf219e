// SPDX-License-Identifier: AGPL-3.0-or-later
#include "app/InAppToolbar.h"

#include "app/BrandMark.h"
#include "app/DocumentChip.h"
#include "controls/MenuButton.h"
#include "controls/SymbolButton.h"
#include "document/DocumentState.h"
#include "pdf/FileName.h"
#include "platform/Symbols.h"

#include <QAction>
#include <QHBoxLayout>
#include <QMenu>

namespace quillo {
namespace {

constexpr int paddingAcross = 12;
constexpr int toolbarHeight = 46;

} // namespace

InAppToolbar::InAppToolbar(DocumentState* documentState, QWidget* parent)
    : LatePane(parent)
    , m_documentState(documentState)
{
    setFixedHeight(toolbarHeight);
}

void InAppToolbar::makeContent()
{
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(paddingAcross, 0, paddingAcross, 0);
    row->setSpacing(4);

    row->addWidget(new BrandMark);
    row->addSpacing(12);
    row->addWidget(new MenuButton(tr("File"), makeFileMenu()));
    row->addWidget(new MenuButton(tr("View"), makeViewMenu()));
    row->addSpacing(8);
    row->addStretch(1);
    m_chip = new DocumentChip;
    row->addWidget(m_chip);
    row->addStretch(1);
    row->addSpacing(8);
    m_sidebarButton = new SymbolButton(Symbol::sidebarLeft, tr("Toggle Sidebar"));
    m_sidebarButton->setCheckable(true);
    connect(m_sidebarButton, &SymbolButton::clicked, this, &InAppToolbar::sidebarToggled);
    row->addWidget(m_sidebarButton);

    connect(m_documentState, &DocumentState::didChange, this, [this](DocumentState::Field field) {
        if (field == DocumentState::Field::url)
            followDocument();
    });
    followDocument();
    followSidebar();
}

QMenu* InAppToolbar::makeFileMenu()
{
    auto* menu = new QMenu;
    auto* open = menu->addAction(Symbols::icon(Symbol::doc), tr("Open PDF..."));
    open->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_O));
    connect(open, &QAction::triggered, this, &InAppToolbar::openDocumentRequested);
    m_closeDocument = menu->addAction(Symbols::icon(Symbol::xmark), tr("Close Document"));
    m_closeDocument->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_W));
    connect(m_closeDocument, &QAction::triggered, this, &InAppToolbar::closeDocumentRequested);
    addActions(menu->actions());
    return menu;
}

QMenu* InAppToolbar::makeViewMenu()
{
    auto* menu = new QMenu;
    m_showSidebar = menu->addAction(Symbols::icon(Symbol::sidebarLeft), tr("Show Sidebar"));
    m_showSidebar->setCheckable(true);
    m_showSidebar->setShortcut(QKeySequence(Qt::CTRL | Qt::ALT | Qt::Key_S));
    connect(m_showSidebar, &QAction::triggered, this, &InAppToolbar::sidebarToggled);
    addActions(menu->actions());
    return menu;
}

void InAppToolbar::setSidebarShown(bool shown)
{
    m_isSidebarShown = shown;
    if (isFilled())
        followSidebar();
}

void InAppToolbar::followSidebar()
{
    m_sidebarButton->setChecked(m_isSidebarShown);
    m_sidebarButton->setColor(m_isSidebarShown ? ThemeColor::accent : ThemeColor::secondaryText);
    m_showSidebar->setChecked(m_isSidebarShown);
}

void InAppToolbar::followDocument()
{
    const auto& url = m_documentState->url();
    m_chip->setVisible(url.has_value());
    if (url)
        m_chip->setFileName(pdf::printableFileName(*url));
    m_closeDocument->setVisible(url.has_value());
}

} // namespace quillo
