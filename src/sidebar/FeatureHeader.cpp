// SPDX-License-Identifier: AGPL-3.0-or-later
#include "sidebar/FeatureHeader.h"

#include "controls/BusyIndicator.h"
#include "controls/ControlPainting.h"
#include "controls/SymbolView.h"
#include "controls/TextLabel.h"
#include "platform/Symbols.h"
#include "sidebar/RoundedCorner.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QPainter>

namespace quillo {
namespace {

constexpr int symbolSide = 24;
constexpr int chevronSide = 14;

} // namespace

FeatureHeader::FeatureHeader(QStringView symbol, const QString& title, const QString& description)
{
    setText(title);
    setAccessibleName(title);
    setAttribute(Qt::WA_Hover);
    setFocusPolicy(Qt::TabFocus);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);

    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(12, 12, 12, 12);
    row->setSpacing(12);
    m_symbol = new SymbolView(symbol, symbolSide, ThemeColor::accent);
    row->addWidget(m_symbol);
    auto* texts = new QVBoxLayout;
    texts->setSpacing(2);
    m_title = new TextLabel(title, TextStyle::body);
    m_title->setWrapping(true);
    texts->addWidget(m_title);
    m_description = new TextLabel(QString(), TextStyle::caption, ThemeColor::secondaryText);
    m_description->setWrapping(true);
    texts->addWidget(m_description);
    row->addLayout(texts, 1);
    m_busy = new BusyIndicator(chevronSide);
    m_busy->hide();
    row->addWidget(m_busy);
    m_chevron = new SymbolView(Symbol::chevronRight, chevronSide, ThemeColor::secondaryText);
    row->addWidget(m_chevron);
    // The whole row is the button.
    for (QWidget* child : findChildren<QWidget*>())
        child->setAttribute(Qt::WA_TransparentForMouseEvents);
    setDescription(description);
}

void FeatureHeader::setDescription(const QString& description)
{
    m_description->setText(description);
    setAccessibleDescription(description);
}

void FeatureHeader::setExpanded(bool expanded)
{
    m_isExpanded = expanded;
    m_chevron->setSymbol(expanded ? Symbol::chevronDown : Symbol::chevronRight);
    update();
}

void FeatureHeader::setProcessing(bool processing)
{
    m_busy->setVisible(processing);
    m_chevron->setVisible(!processing);
}

void FeatureHeader::followState()
{
    m_symbol->setColor(isEnabled() ? ThemeColor::accent : ThemeColor::secondaryText);
    m_title->setColor(isEnabled() ? ThemeColor::primaryText : ThemeColor::secondaryText);
    m_chevron->setVisible(isEnabled() && m_busy->isHidden());
}

bool FeatureHeader::event(QEvent* event)
{
    if (event->type() == QEvent::HoverEnter || event->type() == QEvent::HoverLeave)
        update();
    else if (event->type() == QEvent::EnabledChange)
        followState();
    return QAbstractButton::event(event);
}

void FeatureHeader::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (isEnabled() && (isDown() || underMouse())) {
        RectCorners corners = RectCorner::topLeft | RectCorner::topRight;
        if (!m_isExpanded)
            corners |= RectCorner::bottomLeft | RectCorner::bottomRight;
        QColor wash = Theme::current().color(ThemeColor::primaryText);
        wash.setAlphaF(isDown() ? 0.09F : 0.04F);
        painter.fillPath(RoundedCorner{cardRadius, corners}.path(rect()), wash);
    }
    if (hasFocus())
        paintFocusFrame(painter, rect(), cardRadius);
}

} // namespace quillo
