// SPDX-License-Identifier: AGPL-3.0-or-later
#include "app/DocumentChip.h"

#include "controls/ControlPainting.h"
#include "platform/Symbols.h"

#include <QPainter>

namespace quillo {
namespace {

constexpr int paddingAcross = 12;
constexpr int paddingAlong = 4;
constexpr int symbolSide = 13;
constexpr int gap = 6;
constexpr int smallestTextWidth = 48;

} // namespace

DocumentChip::DocumentChip(QWidget* parent)
    : QWidget(parent)
{
    QFont font = Theme::font(TextStyle::subheadline);
    font.setWeight(QFont::Medium);
    setFont(font);
    setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Fixed);
}

void DocumentChip::setFileName(const QString& fileName)
{
    m_fileName = fileName;
    setAccessibleName(fileName);
    setToolTip(fileName);
    updateGeometry();
    update();
}

QSize DocumentChip::sizeHint() const
{
    // At fractions of a pixel a text may turn out a little wider than its whole number of pixels.
    const int text = fontMetrics().horizontalAdvance(m_fileName) + 2;
    return {2 * paddingAcross + symbolSide + gap + text, fontMetrics().height() + 2 * paddingAlong};
}

QSize DocumentChip::minimumSizeHint() const
{
    const QSize whole = sizeHint();
    const int least = 2 * paddingAcross + symbolSide + gap + smallestTextWidth;
    return {std::min(whole.width(), least), whole.height()};
}

void DocumentChip::paintEvent(QPaintEvent*)
{
    const Theme& theme = Theme::current();
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(theme.color(ThemeColor::controlBackground));
    painter.drawRoundedRect(rect(), controlRadius, controlRadius);
    painter.drawPixmap(
        paddingAcross, (height() - symbolSide) / 2,
        Symbols::pixmap(
            Symbol::docFill, symbolSide, theme.color(ThemeColor::secondaryText), devicePixelRatioF()));
    const int left = paddingAcross + symbolSide + gap;
    const QRect place(left, 0, width() - left - paddingAcross, height());
    painter.setPen(theme.color(ThemeColor::primaryText));
    painter.drawText(
        place, Qt::AlignVCenter | Qt::AlignLeft | Qt::TextSingleLine,
        fontMetrics().elidedText(m_fileName, Qt::ElideMiddle, place.width()));
}

} // namespace quillo
