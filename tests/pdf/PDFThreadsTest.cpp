// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/PDFDocument.h"
#include "pdf/PDFPage.h"
#include "support/PDFWriter.h"
#include "support/Printing.h"

#include <gtest/gtest.h>

#include <QBuffer>

#include <atomic>
#include <functional>
#include <thread>
#include <vector>

namespace pdf {
namespace {

constexpr int pageCount = 12;
constexpr int threadCount = 4;

void onThreads(const std::function<void(int)>& work)
{
    std::vector<std::jthread> threads;
    threads.reserve(threadCount);
    for (int i = 0; i < threadCount; ++i)
        threads.emplace_back(work, i);
}

/// Pages with what threads may meet at: one font, one picture, one Type 3 font, one shading.
PDFWriter sharedResources()
{
    QByteArray jpeg;
    QBuffer buffer(&jpeg);
    QImage picture(40, 40, QImage::Format_RGB32);
    for (int y = 0; y < 40; ++y) {
        for (int x = 0; x < 40; ++x)
            picture.setPixel(x, y, qRgb(x * 6, y * 6, 128));
    }
    picture.save(&buffer, "jpeg");

    PDFWriter writer;
    const int image = writer.addStream(
        jpeg, "/Type/XObject/Subtype/Image/Width 40/Height 40/ColorSpace/DeviceRGB/BitsPerComponent "
              "8/Filter/DCTDecode");
    const int glyph = writer.addStream("600 0 d0 0 0 500 700 re f");
    const int type3 = writer.add(
        "<</Type/Font/Subtype/Type3/FontBBox[0 0 600 700]/FontMatrix[.001 0 0 .001 0 0]/FirstChar 97"
        "/LastChar 97/Widths[600]/Encoding<</Differences[97/a]>>/CharProcs<</a " +
        QByteArray::number(glyph) + " 0 R>>/Resources<<>>>>");
    writer.setFonts("/F3 " + QByteArray::number(type3) + " 0 R");
    writer.setResources(
        "/XObject<</I " + QByteArray::number(image) +
        " 0 R>>/Shading<</S<</ShadingType 2/ColorSpace/DeviceRGB/Coords[0 0 200 0]/Function<</FunctionType 2"
        "/Domain[0 1]/C0[1 0 0]/C1[0 0 1]/N 1>>>>>>");
    for (int i = 0; i < pageCount; ++i) {
        writer.addPage(
            showText(10, 170, "Page " + QByteArray::number(i)) +
                "BT /F3 20 Tf 10 100 Td (aaa) Tj ET q 60 0 0 60 100 100 cm /I Do Q q 0 0 200 50 re W n /S sh "
                "Q",
            "/MediaBox[0 0 200 200]");
    }
    return writer;
}

class PDFThreadsTest : public testing::Test
{
protected:
    std::shared_ptr<PDFDocument> open() { return *PDFDocument::open(m_path); }

    static QString textOf(int page) { return QStringLiteral("Page %1").arg(page); }

    static QImage drawn(const PDFDisplayList& list)
    {
        QImage image(400, 400, QImage::Format_RGB32);
        image.fill(Qt::white);
        EXPECT_TRUE(list.draw(image, {}, 2));
        return image;
    }

    TestFolder m_folder;
    const QString m_path = m_folder.write(QStringLiteral("threads.pdf"), sharedResources().bytes());
};

TEST_F(PDFThreadsTest, ReadOneFileAtTheSameTimeEachOnItsOwn)
{
    std::atomic<int> read = 0;
    onThreads([&](int) {
        const auto document = open();
        for (int i = 0; i < pageCount; ++i)
            read += document->page(i)->string()->startsWith(textOf(i)) ? 1 : 0;
    });
    EXPECT_EQ(read, threadCount * pageCount);
}

TEST_F(PDFThreadsTest, ReadTheSameDocumentAgainWhenItsFileWasReplaced)
{
    const auto document = open();
    PDFWriter other;
    other.addPage(showText(72, 700, "Other"));
    ASSERT_TRUE(QFile::remove(m_path));
    m_folder.write(QStringLiteral("threads.pdf"), other.bytes());

    const auto again = document->openAgain();

    ASSERT_TRUE(again);
    EXPECT_EQ(again->pageCount(), pageCount);
    EXPECT_TRUE(again->page(3)->string()->startsWith(textOf(3)));
    EXPECT_TRUE(document->isFileIntact());
}

TEST_F(PDFThreadsTest, KnowThatAnotherProgramHasWrittenIntoTheFile)
{
    const auto document = open();
    EXPECT_TRUE(document->isFileIntact());
    QFile file(m_path);
    ASSERT_TRUE(file.open(QIODevice::Append));
    file.write("% more");
    file.close();
    EXPECT_FALSE(document->isFileIntact());
}

TEST_F(PDFThreadsTest, ShareOneDocument)
{
    const auto document = open();
    std::atomic<int> read = 0;
    onThreads([&](int thread) {
        for (int i = 0; i < pageCount; ++i) {
            const auto page = document->page((i + thread * 3) % pageCount);
            read += page->string()->startsWith(textOf(page->index())) && page->selection({0, 4}) &&
                            page->contentDisplayList()
                        ? 1
                        : 0;
        }
    });
    EXPECT_EQ(read, threadCount * pageCount);
}

TEST_F(PDFThreadsTest, DrawOneListAtTheSameTime)
{
    const auto list = *open()->page(0)->contentDisplayList();
    const QImage expected = drawn(list);
    EXPECT_NE(expected.pixel(300, 350), qRgb(255, 255, 255));
    std::atomic<int> same = 0;
    onThreads([&](int) {
        for (int i = 0; i < 10; ++i)
            same += drawn(list) == expected ? 1 : 0;
    });
    EXPECT_EQ(same, threadCount * 10);
}

TEST_F(PDFThreadsTest, DrawWhileOthersRead)
{
    const auto document = open();
    const auto list = *document->page(0)->contentDisplayList();
    const QImage expected = drawn(list);
    std::atomic<int> wrong = 0;
    onThreads([&](int thread) {
        for (int i = 0; i < pageCount; ++i) {
            if (thread % 2 == 0)
                wrong += drawn(list) == expected ? 0 : 1;
            else
                wrong += document->page(i)->string()->startsWith(textOf(i)) ? 0 : 1;
        }
    });
    EXPECT_EQ(wrong, 0);
}

TEST_F(PDFThreadsTest, MayDropTheLastOfADocumentAndItsLists)
{
    auto document = open();
    auto list = std::make_unique<PDFDisplayList>(*document->page(0)->contentDisplayList());
    auto page = document->page(1);
    std::jthread([closing = std::move(document)]() mutable { closing.reset(); }).join();
    EXPECT_TRUE(page->string()->startsWith(textOf(1)));
    std::jthread([closing = std::move(page)]() mutable { closing.reset(); }).join();
    // The list needs nothing of its document any more.
    EXPECT_NE(drawn(*list).pixel(300, 350), qRgb(255, 255, 255));
    std::jthread([closing = std::move(list)]() mutable { closing.reset(); }).join();
}

} // namespace
} // namespace pdf
