// SPDX-License-Identifier: AGPL-3.0-or-later
#include "app/BrandMark.h"

#include "platform/Theme.h"

#include <gtest/gtest.h>

#include <QFontMetrics>
#include <QImage>

namespace quillo {
namespace {

struct Ink
{
    int red = 0;
    int green = 0;
    int grey = 0;
};

/// Counts the pixels of each hue in columns of the picture.
Ink inkIn(const QImage& image, int firstColumn, int endColumn)
{
    Ink ink;
    for (int x = firstColumn; x < endColumn; ++x) {
        for (int y = 0; y < image.height(); ++y) {
            const QColor color = image.pixelColor(x, y);
            const int lead = color.red() - color.green();
            if (lead > 40)
                ++ink.red;
            else if (lead < -40)
                ++ink.green;
            else if (color.lightness() < 160)
                ++ink.grey;
        }
    }
    return ink;
}

TEST(BrandMarkTest, DrawsTheFirstLetterRedTheSecondInTheTextColourAndTheRestGreen)
{
    BrandMark mark;
    mark.resize(mark.sizeHint());
    QImage image(mark.size(), QImage::Format_RGB32);
    image.fill(Qt::white);
    mark.render(&image, QPoint(), QRegion(), QWidget::DrawChildren);

    const QFontMetrics metrics(Theme::font(TextStyle::headline));
    const int rest = image.width() - metrics.horizontalAdvance(QStringLiteral("illo"));
    const int second = rest - metrics.horizontalAdvance(QStringLiteral("u"));
    const int first = second - metrics.horizontalAdvance(QStringLiteral("Q"));
    // A letter may reach a pixel over its own room.
    const Ink q = inkIn(image, first + 1, second - 1);
    const Ink u = inkIn(image, second + 1, rest - 1);
    const Ink illo = inkIn(image, rest + 1, image.width());
    EXPECT_GT(q.red, 10);
    EXPECT_EQ(q.green + q.grey, 0);
    EXPECT_GT(u.grey, 10);
    EXPECT_EQ(u.red + u.green, 0);
    EXPECT_GT(illo.green, 10);
    EXPECT_EQ(illo.red + illo.grey, 0);
}

} // namespace
} // namespace quillo
