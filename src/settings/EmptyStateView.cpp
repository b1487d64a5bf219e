// SPDX-License-Identifier: AGPL-3.0-or-later
#include "settings/EmptyStateView.h"

#include "controls/ProminentButton.h"
#include "controls/SymbolView.h"
#include "controls/TextLabel.h"
#include "platform/Symbols.h"

#include <QVBoxLayout>

namespace quillo {

EmptyStateView::EmptyStateView(QWidget* parent)
    : QWidget(parent)
{
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(24, 24, 24, 24);
    column->setSpacing(8);
    column->addStretch(2);

    auto* symbol = new SymbolView(Symbol::docTextMagnifyingglass, 64, ThemeColor::secondaryText);
    column->addWidget(symbol, 0, Qt::AlignHCenter);
    column->addSpacing(8);
    column->addWidget(new TextLabel(tr("Open a PDF to get started"), TextStyle::title), 0, Qt::AlignHCenter);
    column->addWidget(
        new TextLabel(
            tr("Quillo will help you understand your documents"), TextStyle::body, ThemeColor::secondaryText),
        0, Qt::AlignHCenter);
    column->addSpacing(16);
    auto* open = new ProminentButton(tr("Open PDF..."));
    connect(open, &ProminentButton::clicked, this, &EmptyStateView::openDocumentRequested);
    column->addWidget(open, 0, Qt::AlignHCenter);

    column->addStretch(3);
    setFocusProxy(open);
}

} // namespace quillo
