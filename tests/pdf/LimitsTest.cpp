// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/Limits.h"
#include "pdf/CookieScope.h"
#include "pdf/Engine.h"
#include "pdf/PDFDocument.h"
#include "pdf/PDFPage.h"
#include "pdf/ProcessorBudget.h"
#include "support/EndlessPages.h"
#include "support/PDFWriter.h"
#include "support/Printing.h"

#include <gtest/gtest.h>

#include <QBuffer>
#include <QImageWriter>
#include <QtEndian>

#include <chrono>
#include <thread>
#include <zlib.h>

namespace pdf {
namespace {

using namespace std::chrono_literals;
using Code = PDFError::Code;

std::shared_ptr<PDFDocument> open(const PDFWriter& writer)
{
    const TestFolder folder;
    return *PDFDocument::open(folder.write(QStringLiteral("limits.pdf"), writer.bytes()));
}

QByteArray deflated(const QByteArray& bytes)
{
    // Qt puts four bytes of its own before the stream.
    return qCompress(bytes, 9).mid(4);
}

/// A deflate stream that expands to so many megabytes of spaces, without compressing them all.
QByteArray deflatedSpaces(int megabytes)
{
    const QByteArray spaces(1 << 20, ' ');
    QByteArray block(spaces.size(), Qt::Uninitialized);
    z_stream stream = {};
    deflateInit2(&stream, 9, Z_DEFLATED, -15, 9, Z_DEFAULT_STRATEGY);
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(spaces.data()));
    stream.avail_in = static_cast<uInt>(spaces.size());
    stream.next_out = reinterpret_cast<Bytef*>(block.data());
    stream.avail_out = static_cast<uInt>(block.size());
    // A full flush ends the block at a byte, and what follows does not depend on it.
    deflate(&stream, Z_FULL_FLUSH);
    block.truncate(static_cast<qsizetype>(stream.total_out));
    deflateEnd(&stream);
    return QByteArray("\x78\xda", 2) + block.repeated(megabytes) + QByteArray("\x03\x00", 2);
}

PDFWriter endlessPageAndAnother()
{
    PDFWriter writer;
    addEndlessPages(writer, 1);
    writer.addPage(showText(72, 700, "Still here"));
    return writer;
}

TEST(LimitsTest, GrantsNoMoreMemoryThanTheCap)
{
    fz_context* ctx = engine::context();
    const std::size_t before = engine::memoryInUse();
    EXPECT_EQ(fz_malloc_no_throw(ctx, limits::memory + 1), nullptr);
    EXPECT_EQ(fz_malloc_no_throw(ctx, limits::memory), nullptr);
    EXPECT_EQ(engine::memoryInUse(), before);
}

TEST(LimitsTest, CountsWhatIsGivenBack)
{
    fz_context* ctx = engine::context();
    const std::size_t before = engine::memoryInUse();
    void* block = fz_malloc_no_throw(ctx, 1000);
    EXPECT_EQ(engine::memoryInUse(), before + 1000);
    block = fz_realloc_no_throw(ctx, block, 5000);
    EXPECT_EQ(engine::memoryInUse(), before + 5000);
    block = fz_realloc_no_throw(ctx, block, 10);
    EXPECT_EQ(engine::memoryInUse(), before + 10);
    fz_free(ctx, block);
    EXPECT_EQ(engine::memoryInUse(), before);
}

TEST(LimitsTest, GivesUpContentWithoutEndWhenItsTimeIsOver)
{
    const auto document = open(endlessPageAndAnother());
    const auto list = document->page(0)->contentDisplayList(Cancellation::after(50ms));
    ASSERT_FALSE(list);
    EXPECT_EQ(list.error().code, Code::cancelled);
    EXPECT_EQ(document->page(0)->string(Cancellation::after(50ms)), std::nullopt);
    EXPECT_EQ(document->page(1)->string(), QStringLiteral("Still here\n"));
}

TEST(LimitsTest, StopsWhenAnotherThreadCancels)
{
    const auto document = open(endlessPageAndAnother());
    const Cancellation cancellation;
    const std::size_t before = engine::memoryInUse();
    std::jthread canceller([&] {
        // What the list takes up shows that it is being recorded.
        while (engine::memoryInUse() < before + (1 << 20))
            std::this_thread::yield();
        cancellation.cancel();
    });
    const auto list = document->page(0)->contentDisplayList(cancellation);
    ASSERT_FALSE(list);
    EXPECT_EQ(list.error().code, Code::cancelled);
}

TEST(LimitsTest, LimitsAnOperationThatNobodyCancels)
{
    const auto document = open(endlessPageAndAnother());
    const auto list = document->page(0)->contentDisplayList();
    ASSERT_FALSE(list);
    EXPECT_EQ(list.error().code, Code::limitExceeded);
}

TEST(LimitsTest, CountsTheTimeInWhichAnOperationIsBusyAndNotTheTimeInWhichItWaits)
{
    const CookieScope scope(Cancellation(), 50ms);
    std::this_thread::sleep_for(250ms);
    EXPECT_FALSE(scope.isStopped());
    const ThreadClock clock;
    while (!scope.isStopped() && clock.now() < 60s) {
    }
    EXPECT_TRUE(scope.isStopped());
    ASSERT_TRUE(scope.interruption());
    EXPECT_EQ(scope.interruption()->code, Code::limitExceeded);
}

TEST(LimitsTest, AThreadsBudgetIsForAllItsOperationsTogether)
{
    const auto document = open(endlessPageAndAnother());
    const auto ordinary = document->page(1);
    {
        const ProcessorBudget budget(50ms);
        EXPECT_EQ(ordinary->string(), QStringLiteral("Still here\n"));
        EXPECT_FALSE(budget.isSpent());
        EXPECT_EQ(document->page(0)->text(), nullptr);
        EXPECT_TRUE(budget.isSpent());
        const auto list = ordinary->contentDisplayList();
        ASSERT_FALSE(list) << "nothing is left for it";
        EXPECT_EQ(list.error().code, Code::limitExceeded);
        std::jthread other([&] {
            const auto again = document->openAgain();
            EXPECT_TRUE(again && again->page(1)->string()) << "another thread has a budget of its own";
        });
    }
    EXPECT_TRUE(ordinary->contentDisplayList()) << "the budget has gone";
}

TEST(LimitsTest, ABudgetDoesNotCountTheTimeInWhichTheThreadWaits)
{
    const ProcessorBudget budget(50ms);
    std::this_thread::sleep_for(250ms);
    EXPECT_FALSE(budget.isSpent());
}

TEST(LimitsTest, GivesUpStreamsThatExpandTwice)
{
    PDFWriter writer;
    // Some kilobytes that become a terabyte of white space between two operators.
    const QByteArray bomb = deflated(deflated(deflatedSpaces(1000)));
    const int contents = writer.addStream(bomb, "/Filter[/FlateDecode/FlateDecode/FlateDecode]");
    const int page = writer.add(
        "<</Type/Page/MediaBox[0 0 9 9]/Contents[" + (QByteArray::number(contents) + " 0 R ").repeated(1000) +
        "]>>");
    writer.replace(2, "<</Type/Pages/Count 1/Kids[" + QByteArray::number(page) + " 0 R]>>");
    const auto document = open(writer);
    const auto list = document->page(0)->contentDisplayList(Cancellation::after(50ms));
    ASSERT_FALSE(list);
    EXPECT_EQ(list.error().code, Code::cancelled);
}

TEST(LimitsTest, RefusesAPictureThatItsDecoderCannotHold)
{
    QByteArray jpeg;
    QBuffer buffer(&jpeg);
    QImageWriter imageWriter(&buffer, "jpeg");
    imageWriter.setProgressiveScanWrite(true);
    QImage gradient(64, 64, QImage::Format_RGB32);
    gradient.fill(Qt::blue);
    ASSERT_TRUE(imageWriter.write(gradient));
    // The frame header of a progressive picture: length, bits, height, width.
    const qsizetype frame = jpeg.indexOf("\xFF\xC2");
    ASSERT_GE(frame, 0);
    qToBigEndian<quint16>(60000, jpeg.data() + frame + 5);
    qToBigEndian<quint16>(60000, jpeg.data() + frame + 7);

    PDFWriter writer;
    const int image = writer.addStream(
        jpeg, "/Type/XObject/Subtype/Image/Width 60000/Height 60000/ColorSpace/DeviceRGB"
              "/BitsPerComponent 8/Filter/DCTDecode");
    writer.setResources("/XObject<</I " + QByteArray::number(image) + " 0 R>>");
    writer.addPage("1 0 0 rg 0 0 50 100 re f q 50 0 0 100 50 0 cm /I Do Q", "/MediaBox[0 0 100 100]");
    const auto document = open(writer);
    const auto list = document->page(0)->contentDisplayList();
    ASSERT_TRUE(list);
    QImage drawn(100, 100, QImage::Format_RGB32);
    drawn.fill(Qt::white);
    EXPECT_TRUE(list->draw(drawn, {}, 1));
    EXPECT_EQ(drawn.pixel(25, 50), qRgb(255, 0, 0));
}

/// Draws a page of 600 by 600 points after a red corner, within the engine's own limits.
class DrawingLimitsTest : public testing::Test
{
protected:
    void expectDrawn(const QByteArray& content)
    {
        m_writer.addPage("1 0 0 rg 0 0 10 10 re f 0 g " + content, "/MediaBox[0 0 600 600]");
        const auto document = open(m_writer);
        const auto list = document->page(0)->contentDisplayList();
        ASSERT_TRUE(list);
        QImage image(600, 600, QImage::Format_RGB32);
        image.fill(Qt::white);
        EXPECT_TRUE(list->draw(image, {}, 1));
        EXPECT_EQ(image.pixel(5, 595), qRgb(255, 0, 0));
    }

    PDFWriter m_writer;
};

const QByteArray zigzag = QByteArray("600 600 l 300 20 l 20 600 l 599 21 l ").repeated(100000);

TEST_F(DrawingLimitsTest, LeavesOutAPathWithoutNumber)
{
    expectDrawn("20 20 m " + zigzag + "f");
}

TEST_F(DrawingLimitsTest, ClipsByTheBoundsOfAPathWithoutNumber)
{
    expectDrawn("20 20 m " + zigzag + "W n 0 0 600 600 re f");
}

TEST_F(DrawingLimitsTest, LeavesOutDashesWithoutNumber)
{
    expectDrawn("[0.02 0.02] 0 d 20 20 m " + QByteArray("600 600 l 20 20 l ").repeated(9000) + "S");
}

TEST_F(DrawingLimitsTest, SpacesTilesThatLieUponOneAnother)
{
    const int pattern = m_writer.addStream(
        "0 0 1 1 re f", "/Type/Pattern/PatternType 1/PaintType 1/TilingType 1/BBox[0 0 1 1]"
                        "/XStep 0.001/YStep 0.001/Resources<<>>");
    m_writer.setResources("/Pattern<</P " + QByteArray::number(pattern) + " 0 R>>");
    expectDrawn("/Pattern cs /P scn 20 20 580 580 re f");
}

TEST_F(DrawingLimitsTest, StopsInTheMiddleOfAMesh)
{
    // Coons patches, each with its corners in the page's corners.
    QByteArray patch(1, '\0');
    for (const int coordinate : {0, 0, 0, 1, 0, 2, 0, 3, 1, 3, 2, 3, 3, 3, 3, 2, 3, 1, 3, 0, 2, 0, 1, 0})
        patch += QByteArray(2, static_cast<char>(coordinate * 85));
    patch += QByteArray("\xff\0\0\0\xff\0\0\0\xff\xff\xff\0", 12);
    const int mesh = m_writer.addStream(
        patch.repeated(100000), "/ShadingType 6/ColorSpace/DeviceRGB/BitsPerCoordinate 16/BitsPerComponent 8"
                                "/BitsPerFlag 8/Decode[0 600 0 600 0 1 0 1 0 1]");
    m_writer.setResources("/Shading<</S " + QByteArray::number(mesh) + " 0 R>>");
    m_writer.addPage("/S sh", "/MediaBox[0 0 600 600]");
    const auto document = open(m_writer);
    const auto list = document->page(0)->contentDisplayList();
    ASSERT_TRUE(list);
    QImage image(600, 600, QImage::Format_RGB32);
    const auto drawn = list->draw(image, {}, 1, Cancellation::after(50ms));
    ASSERT_FALSE(drawn);
    EXPECT_EQ(drawn.error().code, Code::cancelled);
}

} // namespace
} // namespace pdf
