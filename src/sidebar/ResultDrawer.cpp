// SPDX-License-Identifier: AGPL-3.0-or-later
#include "sidebar/ResultDrawer.h"

#include "controls/Motion.h"
#include "platform/Theme.h"

#include <QPainter>
#include <QVBoxLayout>
#include <QVariantAnimation>

namespace quillo {
namespace {

constexpr int padding = 12;
// The footer's own padding: its text is to stand in line with the content.
constexpr int footerPadding = 8;

} // namespace

ResultDrawer::ResultDrawer(QWidget* footer, QWidget* parent)
    : QWidget(parent)
    , m_sliding(new QVariantAnimation(this))
{
    m_column = new QVBoxLayout(this);
    m_column->setContentsMargins(padding - footerPadding, padding, padding, padding - footerPadding / 2);
    m_column->setSpacing(8);
    m_column->addWidget(footer, 0, Qt::AlignLeft);
    m_sliding->setEasingCurve(QEasingCurve::InOutQuad);
    connect(m_sliding, &QVariantAnimation::valueChanged, this, [this](const QVariant& height) {
        setMaximumHeight(height.toInt());
    });
    connect(m_sliding, &QVariantAnimation::finished, this, [this] {
        // Open, the drawer is free to grow with its content.
        if (m_isOpen)
            setMaximumHeight(QWIDGETSIZE_MAX);
        else
            hide();
    });
    setMaximumHeight(0);
    hide();
}

void ResultDrawer::setContent(QWidget* content)
{
    if (m_content) {
        m_content->hide();
        m_content->deleteLater();
    }
    m_content = content;
    m_content->setContentsMargins(footerPadding, 0, 0, 0);
    m_column->insertWidget(0, content);
}

void ResultDrawer::setOpen(bool open)
{
    if (open == m_isOpen)
        return;
    m_isOpen = open;
    const int from = isVisible() ? height() : 0;
    show();
    m_sliding->stop();
    m_sliding->setStartValue(from);
    m_sliding->setEndValue(open ? fullHeight() : 0);
    m_sliding->setDuration(motionDuration(*this));
    m_sliding->start();
}

int ResultDrawer::fullHeight() const
{
    return m_column->hasHeightForWidth() ? m_column->totalHeightForWidth(width())
                                         : m_column->totalSizeHint().height();
}

void ResultDrawer::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    const double hairline = 1.0 / devicePixelRatioF();
    painter.fillRect(QRectF(0, 0, width(), hairline), Theme::current().color(ThemeColor::separator));
}

} // namespace quillo
