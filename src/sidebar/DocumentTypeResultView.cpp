// SPDX-License-Identifier: AGPL-3.0-or-later
#include "sidebar/DocumentTypeResultView.h"

#include "controls/SymbolView.h"
#include "controls/TextLabel.h"
#include "platform/Symbols.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

#include <array>
#include <utility>

namespace quillo {
namespace {

using DocumentType = DocumentInsight::DocumentType;

constexpr std::array<std::pair<DocumentType, QStringView>, 5> symbols{{
    {DocumentType::bill, Symbol::docText},
    {DocumentType::letter, Symbol::envelope},
    {DocumentType::form, Symbol::docOnClipboard},
    {DocumentType::manual, Symbol::book},
    {DocumentType::unknown, Symbol::docQuestionmark},
}};

QStringView symbolFor(DocumentType type)
{
    for (const auto& [entry, symbol] : symbols) {
        if (entry == type)
            return symbol;
    }
    Q_UNREACHABLE();
}

} // namespace

DocumentTypeResultView::DocumentTypeResultView(const DocumentInsight& insight, QWidget* parent)
    : QWidget(parent)
{
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(4);

    auto* type = new QHBoxLayout;
    type->setSpacing(8);
    type->addWidget(new SymbolView(symbolFor(insight.documentType), 20, ThemeColor::accent));
    auto* name = new TextLabel(rawValue(insight.documentType), TextStyle::headline, ThemeColor::accent);
    type->addWidget(name, 1);
    column->addLayout(type);
    column->addSpacing(8);

    auto* confidence = new QHBoxLayout;
    confidence->setSpacing(8);
    confidence->addWidget(new TextLabel(tr("Confidence"), TextStyle::caption, ThemeColor::secondaryText));
    confidence->addStretch();
    const int percent = static_cast<int>(insight.confidence * 100);
    confidence->addWidget(new TextLabel(tr("%1%").arg(percent), TextStyle::caption));
    column->addLayout(confidence);
    column->addSpacing(4);

    column->addWidget(new TextLabel(tr("Evidence"), TextStyle::caption, ThemeColor::secondaryText));
    for (const QString& line : insight.evidence) {
        auto* evidence = new TextLabel(line, TextStyle::caption);
        evidence->setWrapping(true);
        column->addWidget(evidence);
    }
}

} // namespace quillo
