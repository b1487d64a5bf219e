// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/PDFDocument.h"
#include "pdf/PDFPage.h"
#include "support/PDFWriter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>

namespace pdf {
namespace {

PDFDisplayList listOf(const QByteArray& content, const QByteArray& entries = {})
{
    const TestFolder folder;
    PDFWriter writer;
    writer.addPage(content, entries);
    const auto document = PDFDocument::open(folder.write(QStringLiteral("list.pdf"), writer.bytes()));
    return *(*document)->page(0)->contentDisplayList();
}

QImage draw(const PDFDisplayList& list, QRect part, double scale)
{
    QImage image(part.size(), QImage::Format_RGB32);
    image.fill(Qt::white);
    EXPECT_TRUE(list.draw(image, part.topLeft(), scale));
    return image;
}

TEST(PDFDisplayListTest, DrawsInTheRightPlaceAndColour)
{
    const auto list = listOf("1 0 0 rg 0 0 50 100 re f 0 0 1 rg 50 0 50 50 re f", "/MediaBox[0 0 100 100]");
    EXPECT_EQ(list.displaySize(), QSizeF(100, 100));
    const QImage image = draw(list, {0, 0, 100, 100}, 1);
    EXPECT_EQ(image.pixel(25, 25), qRgb(255, 0, 0));
    EXPECT_EQ(image.pixel(75, 75), qRgb(0, 0, 255));
    EXPECT_EQ(image.pixel(75, 25), qRgb(255, 255, 255));
}

/// The largest difference of two pictures in any channel of any pixel.
int largestDifference(const QImage& a, const QImage& b)
{
    if (a.size() != b.size())
        return 255;
    int largest = 0;
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x) {
            const QRgb p = a.pixel(x, y);
            const QRgb q = b.pixel(x, y);
            largest = std::max(
                {largest, std::abs(qRed(p) - qRed(q)), std::abs(qGreen(p) - qGreen(q)),
                 std::abs(qBlue(p) - qBlue(q))});
        }
    }
    return largest;
}

TEST(PDFDisplayListTest, DrawsTilesWithoutASeam)
{
    const auto list = listOf(
        "0.2 0.5 0.1 rg 10 10 m 90 30 l 40 93 l f 3 w 5 95 m 95 5 l S BT /F1 23 Tf 7 40 Td (Seam) Tj ET",
        "/MediaBox[0 0 100 100]");
    const double scale = 2.37;
    const QSize size = pixelSize(list.displaySize(), scale);
    const QImage whole = draw(list, {{0, 0}, size}, scale);
    for (int y = 0; y < size.height(); y += 64) {
        for (int x = 0; x < size.width(); x += 64) {
            const QRect part = QRect(x, y, 64, 64).intersected({{0, 0}, size});
            // Antialiasing rounds an edge by where it is cut, which no eye can see.
            EXPECT_LE(largestDifference(draw(list, part, scale), whole.copy(part)), 24)
                << "at " << x << ", " << y;
        }
    }
}

TEST(PDFDisplayListTest, LeavesTheBackgroundWhereThePageDrawsNothing)
{
    const auto list = listOf("0 0 10 10 re f", "/MediaBox[0 0 100 100]");
    QImage image(100, 100, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    ASSERT_TRUE(list.draw(image, {}, 1));
    EXPECT_EQ(image.pixel(50, 50), qRgba(0, 0, 0, 0));
    EXPECT_EQ(image.pixel(5, 95), qRgba(0, 0, 0, 255));
}

TEST(PDFDisplayListTest, DrawsNothingOnceCancelled)
{
    const auto list = listOf("0 0 100 100 re f", "/MediaBox[0 0 100 100]");
    const Cancellation cancellation;
    cancellation.cancel();
    QImage image(100, 100, QImage::Format_RGB32);
    const auto drawn = list.draw(image, {}, 1, cancellation);
    ASSERT_FALSE(drawn);
    EXPECT_EQ(drawn.error().code, PDFError::Code::cancelled);
}

TEST(PDFDisplayListTest, RoundsThePixelsOfAPageUp)
{
    EXPECT_EQ(pixelSize({612, 792}, 1), QSize(612, 792));
    EXPECT_EQ(pixelSize({595.28, 841.89}, 2), QSize(1191, 1684));
    EXPECT_EQ(pixelSize({0.1, 0.1}, 0.5), QSize(1, 1));
}

/// A page of one colour by way of a shading that is no object of its own, but for its function.
QByteArray shadedPage(const QByteArray& color, int objectsBefore = 0)
{
    PDFWriter writer;
    for (int i = 0; i < objectsBefore; ++i)
        writer.add("null");
    const int function =
        writer.add("<</FunctionType 2/Domain[0 1]/C0[" + color + "]/C1[" + color + "]/N 1>>");
    writer.setResources(
        "/Shading<</S<</ShadingType 2/ColorSpace/DeviceRGB/Coords[0 0 100 0]/Function " +
        QByteArray::number(function) + " 0 R>>>>");
    writer.addPage("/S sh", "/MediaBox[0 0 100 100]");
    return writer.bytes();
}

TEST(PDFDisplayListTest, DoesNotTakeTheShadingOfAnotherDocument)
{
    const TestFolder folder;
    const auto colorOf = [](PDFDocument& document) {
        return draw(*document.page(0)->contentDisplayList(), {0, 0, 100, 100}, 1).pixel(50, 50);
    };
    const auto red = PDFDocument::open(folder.write(QStringLiteral("red.pdf"), shadedPage("1 0 0")));
    const auto blue = PDFDocument::open(folder.write(QStringLiteral("blue.pdf"), shadedPage("0 0 1")));
    // Its shading names an object that the others lack.
    const auto large = PDFDocument::open(folder.write(QStringLiteral("large.pdf"), shadedPage("0 1 0", 100)));
    EXPECT_EQ(colorOf(**red), qRgb(255, 0, 0));
    EXPECT_EQ(colorOf(**blue), qRgb(0, 0, 255)) << "by its text it is the same";
    EXPECT_EQ(colorOf(**large), qRgb(0, 255, 0));
    EXPECT_EQ(colorOf(**red), qRgb(255, 0, 0));
}

} // namespace
} // namespace pdf
