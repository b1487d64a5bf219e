// SPDX-License-Identifier: AGPL-3.0-or-later
#include "sidebar/ExpandableFeatureButton.h"

#include "controls/ControlPainting.h"
#include "controls/SmallButton.h"
#include "platform/Symbols.h"
#include "sidebar/FeatureHeader.h"
#include "sidebar/ResultDrawer.h"

#include <QPainter>
#include <QVBoxLayout>

namespace quillo {

ExpandableFeatureButton::ExpandableFeatureButton(
    QStringView icon, const QString& title, const QString& description)
{
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    m_header = new FeatureHeader(icon, title, description);
    column->addWidget(m_header);
    auto* runAgain = new SmallButton(Symbol::arrowClockwise, tr("Run again"), TextStyle::caption2);
    m_drawer = new ResultDrawer(runAgain);
    column->addWidget(m_drawer);

    connect(m_header, &FeatureHeader::clicked, this, [this] {
        if (m_hasResults)
            Q_EMIT toggleExpanded();
        else
            Q_EMIT action();
    });
    connect(runAgain, &SmallButton::clicked, this, &ExpandableFeatureButton::action);
}

void ExpandableFeatureButton::setDisabled(bool disabled)
{
    m_header->setDisabled(disabled);
}

void ExpandableFeatureButton::setProcessing(bool processing)
{
    m_header->setProcessing(processing);
}

void ExpandableFeatureButton::setExpanded(bool expanded)
{
    m_header->setExpanded(expanded && m_hasResults);
    m_drawer->setOpen(expanded && m_hasResults);
}

void ExpandableFeatureButton::setResultContent(QWidget* content)
{
    m_hasResults = content != nullptr;
    if (content)
        m_drawer->setContent(content);
    else
        setExpanded(false);
}

void ExpandableFeatureButton::paintEvent(QPaintEvent*)
{
    const Theme& theme = Theme::current();
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const double hairline = 1.0 / devicePixelRatioF();
    painter.setPen(QPen(theme.color(ThemeColor::separator), hairline));
    painter.setBrush(theme.color(ThemeColor::controlBackground));
    const double inset = hairline / 2;
    painter.drawRoundedRect(QRectF(rect()).adjusted(inset, inset, -inset, -inset), cardRadius, cardRadius);
}

} // namespace quillo
