// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdfview/TileRenderer.h"

#include "pdf/Engine.h"
#include "pdf/Limits.h"
#include "pdf/PDFAnnotation.h"
#include "pdf/PDFDisplayList.h"
#include "pdf/PDFDocument.h"
#include "pdf/PDFPage.h"
#include "pdfview/RenderThreads.h"
#include "pdfview/ViewSupport.h"

#include <gtest/gtest.h>

#include <QBuffer>
#include <QDeadlineTimer>
#include <QPainter>
#include <QSet>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <dlfcn.h>
#include <jpeglib.h>
#include <mutex>

namespace {

std::atomic<int> unpackedPictures = 0;

} // namespace

/// The engine's calls to the JPEG library come here first.
extern "C" boolean jpeg_start_decompress(j_decompress_ptr decompress)
{
    ++unpackedPictures;
    static const auto real =
        reinterpret_cast<boolean (*)(j_decompress_ptr)>(dlsym(RTLD_NEXT, "jpeg_start_decompress"));
    return real(decompress);
}

namespace pdf {
namespace {

using namespace std::chrono_literals;

class TileRendererTest : public testing::Test
{
protected:
    std::shared_ptr<PDFDocument> document(const PDFWriter& writer)
    {
        return *PDFDocument::open(m_folder.write(QStringLiteral("tiles.pdf"), writer.bytes()));
    }

    /// All results once nothing is being drawn any more.
    static std::vector<TileRenderer::Result> finish(TileRenderer& renderer)
    {
        EXPECT_TRUE(RenderThreads::shared().waitUntilIdle(60s));
        return renderer.takeResults();
    }

    TestFolder m_folder;
};

template <typename Kind>
std::vector<Kind> only(const std::vector<TileRenderer::Result>& results)
{
    std::vector<Kind> found;
    for (const auto& result : results) {
        if (const auto* value = std::get_if<Kind>(&result))
            found.push_back(*value);
    }
    return found;
}

/// The first page, put together from its tiles.
QImage drawFromTiles(const std::shared_ptr<PDFDocument>& document, double scale, QSize pixels)
{
    TileRenderer renderer(document);
    const auto tiles = tilesIn(QRect(QPoint(0, 0), pixels), 0, scale, pixels);
    renderer.want(tiles);
    EXPECT_TRUE(RenderThreads::shared().waitUntilIdle(60s));
    const auto drawn = only<TileRenderer::TileDrawn>(renderer.takeResults());
    EXPECT_EQ(drawn.size(), tiles.size());
    QImage stitched(pixels, QImage::Format_RGB32);
    QPainter painter(&stitched);
    for (const auto& tile : drawn)
        painter.drawImage(tileRect(tile.tile, pixels).topLeft(), tile.image);
    return stitched;
}

/// The first page's content, drawn in one piece.
QImage drawWhole(PDFDocument& document, double scale, QSize pixels)
{
    QImage whole(pixels, QImage::Format_RGB32);
    whole.fill(Qt::white);
    EXPECT_TRUE((*document.page(0)->contentDisplayList()).draw(whole, {0, 0}, scale));
    return whole;
}

TEST_F(TileRendererTest, DrawsTilesThatFitTogetherWithoutASeam)
{
    PDFWriter writer;
    QByteArray lines;
    for (int i = 0; i < 12; ++i)
        lines += "0 " + QByteArray::number(i * 60) + " m 612 " + QByteArray::number(i * 60 + 130) + " l S ";
    QByteArray words;
    for (int line = 0; line < 40; ++line)
        words += showText(
            20 + line, line * 19, "Seams would show in these words, which cross all the tiles of a row");
    writer.addPage(lines + words);
    const auto file = document(writer);
    constexpr double scale = 1.7;
    const QSize pixels = pixelSize({612, 792}, scale);

    const QImage stitched = drawFromTiles(file, scale, pixels);
    EXPECT_LE(largestDifference(stitched, drawWhole(*file, scale, pixels)), seamTolerance);
}

TEST_F(TileRendererTest, DrawsTheTilesOfAScanWithoutASeam)
{
    PDFWriter writer;
    constexpr int side = 2203;
    QByteArray stripes;
    for (int y = 0; y < side; ++y) {
        for (int x = 0; x < side; ++x)
            stripes += (x + y) % 17 < 5 ? '\0' : '\xff';
    }
    const QByteArray size = QByteArray::number(side);
    const int image = writer.addStream(
        stripes, "/Subtype/Image/ColorSpace/DeviceGray/BitsPerComponent 8/Width " + size + "/Height " + size);
    writer.setResources("/XObject<</Scan " + QByteArray::number(image) + " 0 R>>");
    writer.addPage("q 590.3 0 0 771.7 10.2 9.6 cm /Scan Do Q");
    const auto file = document(writer);
    constexpr double scale = 1.7;
    const QSize pixels = pixelSize({612, 792}, scale);

    // First the tiles, which would fit together if the image were already decoded for the whole page.
    const QImage stitched = drawFromTiles(file, scale, pixels);
    EXPECT_LE(largestDifference(stitched, drawWhole(*file, scale, pixels)), seamTolerance);
}

/// A page that is filled by a picture.
PDFWriter scan()
{
    QByteArray jpeg;
    QBuffer buffer(&jpeg);
    buffer.open(QIODevice::WriteOnly);
    QImage image(1600, 2200, QImage::Format_Grayscale8);
    image.fill(Qt::gray);
    EXPECT_TRUE(image.save(&buffer, "JPEG"));
    PDFWriter writer;
    const int picture = writer.addStream(
        jpeg,
        "/Subtype/Image/ColorSpace/DeviceGray/BitsPerComponent 8/Filter/DCTDecode/Width 1600/Height 2200");
    writer.setResources("/XObject<</Scan " + QByteArray::number(picture) + " 0 R>>");
    writer.addPage("q 612 0 0 792 0 0 cm /Scan Do Q");
    return writer;
}

TEST_F(TileRendererTest, UnpacksAPictureOnceForAllTilesOfAPage)
{
    TileRenderer renderer(document(scan()));
    constexpr double scale = 2;
    const QSize pixels = pixelSize({612, 792}, scale);
    const auto tiles = tilesIn(QRect(QPoint(0, 0), pixels), 0, scale, pixels);
    ASSERT_GT(tiles.size(), 4U);
    unpackedPictures = 0;
    renderer.want(tiles);
    EXPECT_EQ(only<TileRenderer::TileDrawn>(finish(renderer)).size(), tiles.size());
    EXPECT_EQ(unpackedPictures, 1);
}

TEST_F(TileRendererTest, KeepsTheDrawingsOfPagesOnlyAsFarAsThereIsRoom)
{
    // Some megabytes as a list.
    QByteArray content;
    for (int i = 0; i < 40'000; ++i)
        content += QByteArray::number(i % 600) + ' ' + QByteArray::number(i / 60) + " 1 1 re f\n";
    constexpr int pages = 5;
    PDFWriter writer;
    for (int page = 0; page < pages; ++page)
        writer.addPage(content);
    const auto document = this->document(writer);
    std::size_t sizeOfOne = 0;
    const std::size_t before = engine::memoryInUse();
    {
        const auto list = document->page(0)->contentDisplayList();
        ASSERT_TRUE(list);
        sizeOfOne = engine::memoryInUse() - before;
    }
    ASSERT_GT(sizeOfOne * (pages - 1), limits::kept::displayLists);
    TileRenderer renderer(document);
    for (int page = 0; page < pages; ++page) {
        renderer.want({Tile::wholePage(page)});
        EXPECT_EQ(only<TileRenderer::TileDrawn>(finish(renderer)).size(), 1U);
    }
    const std::size_t most = std::max(limits::kept::displayLists, sizeOfOne);
    EXPECT_LT(engine::memoryInUse() - before, most + (std::size_t{2} << 20));
}

TEST_F(TileRendererTest, DrawsNoSmallPictureWhereASharpOneTakesNoLonger)
{
    TileRenderer renderer(document(scan()));
    unpackedPictures = 0;
    renderer.want({Tile::wholePage(0)});
    const auto results = finish(renderer);
    ASSERT_EQ(results.size(), 1U);
    ASSERT_TRUE(std::holds_alternative<TileRenderer::PageSized>(results[0]));
    EXPECT_TRUE(std::get<TileRenderer::PageSized>(results[0]).hasPictures);
    EXPECT_EQ(unpackedPictures, 0);
}

TEST_F(TileRendererTest, TellsThePagesSizeBeforeItsFirstPicture)
{
    PDFWriter writer;
    addColouredPage(writer, Qt::red, {300, 400}, "/Rotate 90");
    TileRenderer renderer(document(writer));
    renderer.want({Tile::wholePage(0)});
    const auto results = finish(renderer);
    ASSERT_EQ(results.size(), 2U);
    ASSERT_TRUE(std::holds_alternative<TileRenderer::PageSized>(results[0]));
    EXPECT_EQ(std::get<TileRenderer::PageSized>(results[0]).size, QSizeF(400, 300));
    EXPECT_FALSE(std::get<TileRenderer::PageSized>(results[0]).hasPictures);
    const auto drawn = only<TileRenderer::TileDrawn>(results);
    ASSERT_EQ(drawn.size(), 1U);
    EXPECT_EQ(drawn[0].image.size(), QSize(320, 240));
}

TEST_F(TileRendererTest, DrawsAnnotationsOverTheContent)
{
    PDFWriter writer;
    const int appearance =
        writer.addStream("0 0 1 rg 0 0 300 400 re f", "/Type/XObject/Subtype/Form/BBox[0 0 300 400]");
    const int annotation = writer.add(
        "<</Type/Annot/Subtype/Square/Rect[0 0 300 400]/F 4/AP<</N " + QByteArray::number(appearance) +
        " 0 R>>>>");
    addColouredPage(writer, Qt::red, {300, 400}, "/Annots[" + QByteArray::number(annotation) + " 0 R]");
    TileRenderer renderer(document(writer));
    renderer.want({{0, 1.0, QPoint(0, 0)}});
    const auto drawn = only<TileRenderer::TileDrawn>(finish(renderer));
    ASSERT_EQ(drawn.size(), 1U);
    EXPECT_EQ(drawn[0].image.pixelColor(150, 200), QColor(Qt::blue));
}

TEST_F(TileRendererTest, ReportsPagesThatAreNotThere)
{
    PDFWriter writer;
    addColouredPage(writer, Qt::red);
    TileRenderer renderer(document(writer));
    renderer.want({Tile::wholePage(7), Tile::wholePage(0)});
    const auto results = finish(renderer);
    const auto failed = only<TileRenderer::PageFailed>(results);
    ASSERT_EQ(failed.size(), 1U);
    EXPECT_EQ(failed[0].page, 7);
    EXPECT_EQ(only<TileRenderer::TileDrawn>(results).size(), 1U);
}

TEST_F(TileRendererTest, AbandonsWhatIsNoLongerWanted)
{
    PDFWriter writer;
    addEndlessPage(writer);
    addColouredPage(writer, Qt::red);
    TileRenderer renderer(document(writer));
    renderer.want({{0, 4.0, QPoint(1, 1)}, {0, 4.0, QPoint(2, 2)}});
    renderer.want({{1, 1.0, QPoint(0, 0)}});
    const auto drawn = only<TileRenderer::TileDrawn>(finish(renderer));
    ASSERT_EQ(drawn.size(), 1U);
    EXPECT_EQ(drawn[0].tile.page, 1);
}

TEST_F(TileRendererTest, DrawsWhatIsWantedAgainAfterItWasAbandoned)
{
    PDFWriter writer;
    addColouredPage(writer, Qt::red, {3000, 3000});
    TileRenderer renderer(document(writer));
    const Tile tile{0, 1.0, QPoint(2, 2)};
    for (int i = 0; i < 50; ++i) {
        renderer.want({tile});
        renderer.want({});
    }
    renderer.want({tile});
    const auto drawn = only<TileRenderer::TileDrawn>(finish(renderer));
    ASSERT_FALSE(drawn.empty());
    EXPECT_EQ(drawn.back().tile, tile);
}

TEST_F(TileRendererTest, NotifiesOnceUntilTheResultsAreTaken)
{
    PDFWriter writer;
    for (int page = 0; page < 3; ++page)
        addColouredPage(writer, colorOfPage(page));
    TileRenderer renderer(document(writer));
    std::atomic<int> calls = 0;
    renderer.setNotifier([&] { ++calls; });
    renderer.want({Tile::wholePage(0), Tile::wholePage(1), Tile::wholePage(2)});
    EXPECT_EQ(finish(renderer).size(), 6U);
    EXPECT_EQ(calls, 1);
    renderer.want({Tile::wholePage(0)});
    finish(renderer);
    EXPECT_EQ(calls, 2);
}

TEST_F(TileRendererTest, NotifiesALateListenerOfWhatWaits)
{
    PDFWriter writer;
    addColouredPage(writer, Qt::red);
    TileRenderer renderer(document(writer));
    renderer.want({Tile::wholePage(0)});
    ASSERT_TRUE(RenderThreads::shared().waitUntilIdle(60s));
    std::atomic<int> calls = 0;
    renderer.setNotifier([&] { ++calls; });
    EXPECT_EQ(calls, 1);
}

TEST_F(TileRendererTest, GoesWithoutWaitingForWhatIsBeingDrawn)
{
    PDFWriter writer;
    addEndlessPage(writer);
    {
        TileRenderer renderer(document(writer));
        renderer.want({Tile::wholePage(0)});
    }
    EXPECT_TRUE(RenderThreads::shared().waitUntilIdle(5s)) << "drawing has not been abandoned";
}

/// A page with a check box that covers it, red when it is on and green when it is off, on blue content.
PDFWriter pageWithBox()
{
    PDFWriter writer;
    const int red = writer.addStream("1 0 0 rg 0 0 100 100 re f", "/Subtype/Form/BBox[0 0 100 100]");
    const int green = writer.addStream("0 1 0 rg 0 0 100 100 re f", "/Subtype/Form/BBox[0 0 100 100]");
    const int box = writer.add(
        "<</Subtype/Widget/FT/Btn/T(box)/Rect[0 0 50 100]/AS/Off/AP<</N<</Yes " + QByteArray::number(red) +
        " 0 R/Off " + QByteArray::number(green) + " 0 R>>>>>>");
    writer.addPage(
        "0 0 1 rg 0 0 100 100 re f", "/MediaBox[0 0 100 100]/Annots[" + QByteArray::number(box) + " 0 R]");
    writer.setCatalog("/AcroForm<</Fields[" + QByteArray::number(box) + " 0 R]>>");
    return writer;
}

TEST_F(TileRendererTest, DrawsAnnotationsAsTheyAreAfterARefresh)
{
    const auto file = document(pageWithBox());
    const Tile tile{0, 1.0, {0, 0}};
    TileRenderer renderer(file);
    renderer.want({tile});
    auto drawn = only<TileRenderer::TileDrawn>(finish(renderer));
    ASSERT_EQ(drawn.size(), 1U);
    EXPECT_EQ(drawn[0].image.pixelColor(25, 50), QColor(Qt::green));

    for (const bool isOn : {true, false}) {
        const auto fields = file->page(0)->formFields();
        ASSERT_TRUE(fields && file->setFormValue(fields->front().widget, FormValue(isOn)));
        renderer.refreshAnnotations(0);
        renderer.want({tile});
        drawn = only<TileRenderer::TileDrawn>(finish(renderer));
        ASSERT_EQ(drawn.size(), 1U);
        EXPECT_EQ(drawn[0].image.pixelColor(25, 50), isOn ? QColor(Qt::red) : QColor(Qt::green));
        EXPECT_EQ(drawn[0].image.pixelColor(75, 50), QColor(Qt::blue)) << "the content stays";
    }
}

TEST_F(TileRendererTest, HandsOutPicturesFromBeforeARefreshAsOutdated)
{
    const auto file = document(pageWithBox());
    const Tile tile{0, 1.0, {0, 0}};
    TileRenderer renderer(file);
    renderer.want({tile});
    ASSERT_TRUE(RenderThreads::shared().waitUntilIdle(60s));
    renderer.refreshAnnotations(0);
    auto drawn = only<TileRenderer::TileDrawn>(renderer.takeResults());
    ASSERT_EQ(drawn.size(), 1U);
    EXPECT_FALSE(drawn[0].isCurrent);
    renderer.want({tile});
    drawn = only<TileRenderer::TileDrawn>(finish(renderer));
    ASSERT_EQ(drawn.size(), 1U);
    EXPECT_TRUE(drawn[0].isCurrent);
}

TEST_F(TileRendererTest, DrawsEachTileHoweverFastRefreshesFollowOneAnother)
{
    PDFWriter writer;
    addPageWithSlowAnnotation(writer);
    const auto file = document(writer);
    const QSize pixels(800, 800);
    const auto tiles = tilesIn(QRect(QPoint(0, 0), pixels), 0, 2.0, pixels);
    ASSERT_EQ(tiles.size(), 4U);
    const auto annotation = file->page(0)->annotations().at(0);
    TileRenderer renderer(file);
    QSet<Tile> drawn;
    const QDeadlineTimer deadline(20s);
    for (int i = 0; drawn.size() < 4 && !deadline.hasExpired(); ++i) {
        annotation->setBounds({100.0 + i % 50, 100, 200, 200});
        renderer.refreshAnnotations(0);
        renderer.want(tiles);
        for (const auto& result : only<TileRenderer::TileDrawn>(renderer.takeResults()))
            drawn.insert(result.tile);
    }
    EXPECT_EQ(drawn.size(), 4);
    renderer.want(tiles);
    const auto last = only<TileRenderer::TileDrawn>(finish(renderer));
    EXPECT_EQ(
        std::count_if(last.begin(), last.end(), [](const auto& result) { return result.isCurrent; }), 4);
}

/// A page of grey lines under many coloured squares that overlap, every other one half transparent.
PDFWriter pageWithSquares()
{
    PDFWriter writer;
    const int state = writer.add("<</Type/ExtGState/ca 0.5/BM/Multiply>>");
    QByteArray annotations;
    for (int i = 0; i < 60; ++i) {
        const QByteArray colour = QByteArray::number(i % 3 / 2.0) + ' ' + QByteArray::number(i % 4 / 3.0) +
                                  ' ' + QByteArray::number(i % 5 / 4.0) + " rg ";
        const int picture = writer.addStream(
            (i % 2 == 0 ? "/Half gs " : "") + colour + "0 0 90.5 90.5 re f",
            "/Subtype/Form/BBox[0 0 90.5 90.5]/Resources<</ExtGState<</Half " + QByteArray::number(state) +
                " 0 R>>>>");
        const double x = 17.3 * (i % 20);
        const double y = 61.7 * i / 10;
        annotations +=
            QByteArray::number(writer.add(
                "<</Type/Annot/Subtype/Square/F 4/Rect[" + QByteArray::number(x) + ' ' +
                QByteArray::number(y) + ' ' + QByteArray::number(x + 90.5) + ' ' +
                QByteArray::number(y + 90.5) + "]/AP<</N " + QByteArray::number(picture) + " 0 R>>>>")) +
            " 0 R ";
    }
    QByteArray lines = "0.8 G ";
    for (int i = 0; i < 40; ++i)
        lines += "0 " + QByteArray::number(i * 10) + " m 400 " + QByteArray::number(i * 11) + " l S ";
    writer.addPage(lines, "/MediaBox[0 0 400 400]/Annots[" + annotations + ']');
    return writer;
}

TEST_F(TileRendererTest, ShowsAMovedAnnotationInItsPlaceBetweenTheOthers)
{
    const auto file = document(pageWithSquares());
    constexpr double scale = 1.6;
    const QSize pixels = pixelSize({400, 400}, scale);
    const auto tiles = tilesIn(QRect(QPoint(0, 0), pixels), 0, scale, pixels);
    TileRenderer renderer(file);
    renderer.want(tiles);
    finish(renderer);
    const auto moved = file->page(0)->annotations().at(30);
    for (const QPointF place : {QPointF(200, 180), QPointF(287.3, 100.9), QPointF(-40, 350)}) {
        moved->setBounds({place, moved->bounds().size()});
        renderer.refreshAnnotations(0);
        renderer.want(tiles);
        QImage stitched(pixels, QImage::Format_RGB32);
        QPainter painter(&stitched);
        const auto drawn = only<TileRenderer::TileDrawn>(finish(renderer));
        ASSERT_EQ(drawn.size(), tiles.size());
        for (const auto& tile : drawn)
            painter.drawImage(tileRect(tile.tile, pixels).topLeft(), tile.image);
        EXPECT_LE(largestDifference(stitched, drawFromTiles(file, scale, pixels)), seamTolerance);
    }
}

TEST_F(TileRendererTest, ReadsAPageAnewAfterItWasTurned)
{
    PDFWriter writer;
    writer.addPage("1 0 0 rg 0 0 100 100 re f 0 0 1 rg 100 0 1000 100 re f", "/MediaBox[0 0 1100 100]");
    const auto file = document(writer);
    const Tile left{0, 1.0, {0, 0}};
    const Tile right{0, 1.0, {2, 0}};
    TileRenderer renderer(file);
    renderer.want({left, right});
    ASSERT_EQ(only<TileRenderer::TileDrawn>(finish(renderer)).size(), 2U);

    ASSERT_TRUE(file->page(0)->setRotation(90));
    renderer.refreshPage(0);
    renderer.want({left, right});
    const auto results = finish(renderer);
    const auto sizes = only<TileRenderer::PageSized>(results);
    ASSERT_EQ(sizes.size(), 1U);
    EXPECT_EQ(sizes[0].size, QSizeF(100, 1100));
    const auto drawn = only<TileRenderer::TileDrawn>(results);
    ASSERT_EQ(drawn.size(), 1U) << "the page no longer goes so far to the right";
    EXPECT_EQ(drawn[0].tile, left);
    EXPECT_EQ(drawn[0].image.size(), QSize(100, 512));
    EXPECT_EQ(drawn[0].image.pixelColor(50, 50), QColor(Qt::red));
    EXPECT_EQ(drawn[0].image.pixelColor(50, 150), QColor(Qt::blue));
    EXPECT_TRUE(only<TileRenderer::PageFailed>(results).empty());
}

TEST_F(TileRendererTest, HandsOutNothingFromBeforeAPageWasTurned)
{
    const auto file = document(pageWithBox());
    TileRenderer renderer(file);
    renderer.want({{0, 1.0, {0, 0}}});
    ASSERT_TRUE(RenderThreads::shared().waitUntilIdle(60s));
    renderer.refreshPage(0);
    EXPECT_TRUE(renderer.takeResults().empty());
}

} // namespace
} // namespace pdf
