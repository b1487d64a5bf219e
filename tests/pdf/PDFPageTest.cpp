// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/PDFPage.h"
#include "pdf/PDFDocument.h"
#include "support/PDFWriter.h"
#include "support/Printing.h"

#include <gtest/gtest.h>

#include <QImage>
#include <QTransform>

namespace pdf {
namespace {

std::shared_ptr<PDFPage> pageWith(const QByteArray& entries)
{
    const TestFolder folder;
    PDFWriter writer;
    writer.addPage({}, entries);
    const auto document = PDFDocument::open(folder.write(QStringLiteral("page.pdf"), writer.bytes()));
    return document ? (*document)->page(0) : nullptr;
}

TEST(PDFPageTest, TellsItsBoxes)
{
    const auto page = pageWith("/MediaBox[10 20 210 320]/CropBox[30 40 130 240]");
    EXPECT_EQ(page->bounds(DisplayBox::mediaBox), QRectF(10, 20, 200, 300));
    EXPECT_EQ(page->bounds(DisplayBox::cropBox), QRectF(30, 40, 100, 200));
    EXPECT_EQ(page->displaySize(), QSizeF(100, 200));
}

TEST(PDFPageTest, HasItsMediaBoxAsCropBoxWhenThereIsNone)
{
    const auto page = pageWith("/MediaBox[0 0 200 300]");
    EXPECT_EQ(page->bounds(DisplayBox::cropBox), QRectF(0, 0, 200, 300));
}

TEST(PDFPageTest, NormalisesABoxWhoseCornersAreSwapped)
{
    const auto page = pageWith("/MediaBox[200 300 0 0]");
    EXPECT_EQ(page->bounds(DisplayBox::mediaBox), QRectF(0, 0, 200, 300));
}

TEST(PDFPageTest, IsShownWholeWhereItsCropBoxLiesBesideIt)
{
    const TestFolder folder;
    PDFWriter writer;
    writer.addPage(
        showText(72, 700, "Text on the page") + "1 0 0 rg 100 100 200 200 re f",
        "/MediaBox[0 0 612 792]/CropBox[1000 1000 1200 1200]/Rotate 90");
    const auto document = PDFDocument::open(folder.write(QStringLiteral("page.pdf"), writer.bytes()));
    ASSERT_TRUE(document);
    const auto page = (*document)->page(0);
    EXPECT_EQ(page->bounds(DisplayBox::cropBox), QRectF(0, 0, 612, 792));
    EXPECT_EQ(page->displaySize(), QSizeF(792, 612));
    EXPECT_EQ(page->string(), QStringLiteral("Text on the page\n"));
    const auto list = page->contentDisplayList();
    ASSERT_TRUE(list);
    QImage image(792, 612, QImage::Format_RGB32);
    image.fill(Qt::white);
    ASSERT_TRUE(list->draw(image, {}, 1));
    EXPECT_EQ(image.pixelColor(page->pageToDisplay().map(QPointF(200, 200)).toPoint()), QColor(Qt::red));
    EXPECT_FALSE((*document)->isModified());
}

TEST(PDFPageTest, MapsTheCropBoxToTheDisplaysOrigin)
{
    const auto page = pageWith("/MediaBox[0 0 200 300]/CropBox[30 40 130 240]");
    EXPECT_EQ(page->rotation(), 0);
    EXPECT_EQ(page->pageToDisplay().map(QPointF(30, 240)), QPointF(0, 0));
    EXPECT_EQ(page->pageToDisplay().map(QPointF(130, 40)), QPointF(100, 200));
}

TEST(PDFPageTest, TurnsAQuarterClockwise)
{
    const auto page = pageWith("/MediaBox[0 0 200 300]/Rotate 90");
    EXPECT_EQ(page->rotation(), 90);
    EXPECT_EQ(page->displaySize(), QSizeF(300, 200));
    EXPECT_EQ(page->pageToDisplay().map(QPointF(0, 0)), QPointF(0, 0));
    EXPECT_EQ(page->pageToDisplay().map(QPointF(0, 300)), QPointF(300, 0));
}

TEST(PDFPageTest, TurnsUpsideDown)
{
    const auto page = pageWith("/MediaBox[0 0 200 300]/Rotate 180");
    EXPECT_EQ(page->rotation(), 180);
    EXPECT_EQ(page->displaySize(), QSizeF(200, 300));
    EXPECT_EQ(page->pageToDisplay().map(QPointF(0, 0)), QPointF(200, 0));
}

TEST(PDFPageTest, TurnsAQuarterAnticlockwise)
{
    const auto page = pageWith("/MediaBox[0 0 200 300]/Rotate -90");
    EXPECT_EQ(page->rotation(), 270);
    EXPECT_EQ(page->displaySize(), QSizeF(300, 200));
    EXPECT_EQ(page->pageToDisplay().map(QPointF(0, 0)), QPointF(300, 200));
    EXPECT_EQ(page->pageToDisplay().map(QPointF(0, 300)), QPointF(0, 200));
}

TEST(PDFPageTest, GetsAUsableSizeWhenItsBoxIsNone)
{
    EXPECT_EQ(pageWith("/MediaBox[0 0 0 0]")->displaySize(), QSizeF(612, 792));
}

} // namespace
} // namespace pdf
