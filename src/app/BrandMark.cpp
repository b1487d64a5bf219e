// SPDX-License-Identifier: AGPL-3.0-or-later
#include "app/BrandMark.h"

#include "platform/Theme.h"

#include <QFontMetrics>
#include <QPainter>

#include <array>

namespace quillo {
namespace {

constexpr int mascotWidth = 30;
constexpr int gap = 6;
constexpr QStringView mascot = u"✨";

struct Run
{
    QStringView text;
    ThemeColor color;
};

constexpr std::array<Run, 3> nameRuns{{
    {u"Q", ThemeColor::red},
    {u"u", ThemeColor::primaryText},
    {u"illo", ThemeColor::green},
}};

} // namespace

BrandMark::BrandMark(QWidget* parent)
    : QWidget(parent)
{
    setAccessibleName(tr("Quillo"));
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

QSize BrandMark::sizeHint() const
{
    int width = mascotWidth + gap;
    const QFontMetrics metrics(Theme::font(TextStyle::headline));
    for (const Run& run : nameRuns)
        width += metrics.horizontalAdvance(run.text.toString());
    return {width, mascotWidth};
}

void BrandMark::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setFont(Theme::emojiFont(TextStyle::title));
    painter.setPen(Theme::current().color(ThemeColor::primaryText));
    painter.drawText(QRect(0, 0, mascotWidth, height()), Qt::AlignCenter, mascot.toString());
    painter.setFont(Theme::font(TextStyle::headline));
    int x = mascotWidth + gap;
    for (const Run& run : nameRuns) {
        const QString text = run.text.toString();
        painter.setPen(Theme::current().color(run.color));
        painter.drawText(QRect(x, 0, width() - x, height()), Qt::AlignVCenter | Qt::AlignLeft, text);
        x += painter.fontMetrics().horizontalAdvance(text);
    }
}

} // namespace quillo
