// SPDX-License-Identifier: AGPL-3.0-or-later
#include "viewer/ViewerToolbar.h"

#include "controls/MenuButton.h"
#include "controls/SymbolButton.h"
#include "controls/TextLabel.h"
#include "platform/Symbols.h"

#include <QAction>
#include <QHBoxLayout>
#include <QMenu>

namespace quillo {
namespace {

constexpr int padding = 8;
constexpr int pageLabelWidth = 60;
constexpr int zoomLabelWidth = 50;

} // namespace

ViewerToolbar::ViewerToolbar(QWidget* parent)
    : LatePane(parent)
{
    setFixedHeight(SymbolButton::side + 2 * padding);
}

void ViewerToolbar::makeContent()
{
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(padding, padding, padding, padding);
    row->setSpacing(4);

    const auto addButton = [&](QStringView symbol, const QString& name, auto requested) {
        auto* button = new SymbolButton(symbol, name);
        connect(button, &SymbolButton::clicked, this, requested);
        row->addWidget(button);
        return button;
    };
    const auto addLabel = [&](const QString& name, int width) {
        auto* label = new TextLabel(QString(), TextStyle::caption);
        label->setAccessibleName(name);
        label->setAlignment(Qt::AlignCenter);
        label->setMinimumWidth(width);
        row->addWidget(label);
        return label;
    };

    m_previousPage =
        addButton(Symbol::chevronLeft, tr("Previous page"), &ViewerToolbar::previousPageRequested);
    m_pageLabel = addLabel(tr("Page"), pageLabelWidth);
    m_nextPage = addButton(Symbol::chevronRight, tr("Next page"), &ViewerToolbar::nextPageRequested);
    row->addSpacing(16);
    addButton(Symbol::minusMagnifyingglass, tr("Zoom out"), &ViewerToolbar::zoomOutRequested);
    m_zoomLabel = addLabel(tr("Zoom"), zoomLabelWidth);
    addButton(Symbol::plusMagnifyingglass, tr("Zoom in"), &ViewerToolbar::zoomInRequested);
    addButton(Symbol::arrowsOutward, tr("Zoom to fit"), &ViewerToolbar::zoomToFitRequested);
    row->addStretch();
    row->addWidget(new MenuButton(tr("&Document"), makeDocumentMenu()));
    followPage();
    followZoomLevel();
}

QMenu* ViewerToolbar::makeDocumentMenu()
{
    auto* menu = new QMenu;
    m_print = menu->addAction(tr("Print..."));
    m_print->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_P));
    m_print->setEnabled(m_isPrintable);
    connect(m_print, &QAction::triggered, this, &ViewerToolbar::printRequested);
    menu->addSeparator();
    auto* rotateLeft = menu->addAction(tr("Rotate Left"));
    connect(rotateLeft, &QAction::triggered, this, &ViewerToolbar::rotateLeftRequested);
    auto* rotateRight = menu->addAction(tr("Rotate Right"));
    connect(rotateRight, &QAction::triggered, this, &ViewerToolbar::rotateRightRequested);
    addActions(menu->actions());
    return menu;
}

void ViewerToolbar::showPage(std::int64_t currentPage, std::int64_t totalPages)
{
    m_currentPage = currentPage;
    m_totalPages = totalPages;
    if (isFilled())
        followPage();
}

void ViewerToolbar::showZoomLevel(double zoomLevel)
{
    m_zoomLevel = zoomLevel;
    if (isFilled())
        followZoomLevel();
}

void ViewerToolbar::setPrintable(bool isPrintable)
{
    m_isPrintable = isPrintable;
    if (isFilled())
        m_print->setEnabled(isPrintable);
}

void ViewerToolbar::followPage()
{
    m_pageLabel->setText(tr("%1 / %2").arg(m_currentPage + 1).arg(m_totalPages));
    m_previousPage->setEnabled(m_currentPage >= 1);
    m_nextPage->setEnabled(m_currentPage < m_totalPages - 1);
}

void ViewerToolbar::followZoomLevel()
{
    m_zoomLabel->setText(tr("%1%").arg(static_cast<int>(m_zoomLevel * 100)));
}

} // namespace quillo
