// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/PDFDocument.h"
#include "pdf/PDFPage.h"
#include "support/PDFWriter.h"

#include <gtest/gtest.h>

#include <QImage>

#include <atomic>
#include <thread>

namespace pdf {
namespace {

class PDFPageRotationTest : public testing::Test
{
protected:
    std::shared_ptr<PDFPage> pageWith(const QByteArray& entries, const QByteArray& content = {})
    {
        PDFWriter writer;
        writer.addPage(content, entries);
        const auto document = PDFDocument::open(m_folder.write(QStringLiteral("page.pdf"), writer.bytes()));
        return (*document)->page(0);
    }

    TestFolder m_folder;
};

QImage draw(const PDFDisplayList& list)
{
    QImage image(pixelSize(list.displaySize(), 1), QImage::Format_RGB32);
    image.fill(Qt::white);
    EXPECT_TRUE(list.draw(image, {}, 1));
    return image;
}

TEST_F(PDFPageRotationTest, TurnsSizeAndTransformAtOnce)
{
    const auto page = pageWith("/MediaBox[0 0 200 300]");
    ASSERT_TRUE(page->setRotation(90));
    EXPECT_EQ(page->rotation(), 90);
    EXPECT_EQ(page->displaySize(), QSizeF(300, 200));
    EXPECT_EQ(page->pageToDisplay().map(QPointF(0, 0)), QPointF(0, 0));
    EXPECT_EQ(page->pageToDisplay().map(QPointF(200, 300)), QPointF(300, 200));
    EXPECT_EQ(page->bounds(DisplayBox::mediaBox), QRectF(0, 0, 200, 300));
}

TEST_F(PDFPageRotationTest, NormalisesEveryMultipleOfNinety)
{
    const auto page = pageWith({});
    const std::pair<int, int> cases[] = {{-90, 270}, {360, 0}, {450, 90}, {-180, 180}, {-720, 0}, {270, 270}};
    for (const auto& [degrees, rotation] : cases) {
        ASSERT_TRUE(page->setRotation(degrees));
        EXPECT_EQ(page->rotation(), rotation) << "for " << degrees;
    }
}

TEST_F(PDFPageRotationTest, ReplacesARotationThatIsInherited)
{
    PDFWriter writer;
    const int page = writer.addPage({}, "/MediaBox[0 0 200 300]");
    writer.replace(2, "<</Type/Pages/Rotate 90/Count 1/Kids[" + QByteArray::number(page) + " 0 R]>>");
    const auto document = PDFDocument::open(m_folder.write(QStringLiteral("page.pdf"), writer.bytes()));
    ASSERT_EQ((*document)->page(0)->rotation(), 90);
    ASSERT_TRUE((*document)->page(0)->setRotation(0));
    EXPECT_EQ((*document)->page(0)->displaySize(), QSizeF(200, 300));
}

TEST_F(PDFPageRotationTest, ShowsInListsAskedForAfterwardsAndNotInThoseBefore)
{
    const auto page = pageWith("/MediaBox[0 0 100 200]", "1 0 0 rg 0 0 50 50 re f");
    const auto before = page->contentDisplayList();
    ASSERT_TRUE(page->setRotation(90));
    const auto after = page->contentDisplayList();
    ASSERT_TRUE(before && after);
    EXPECT_EQ(before->displaySize(), QSizeF(100, 200));
    EXPECT_EQ(draw(*before).pixel(25, 175), qRgb(255, 0, 0));
    EXPECT_EQ(after->displaySize(), QSizeF(200, 100));
    EXPECT_EQ(draw(*after).pixel(25, 25), qRgb(255, 0, 0));
}

TEST_F(PDFPageRotationTest, KeepsTheTextAndItsPlaceOnThePage)
{
    const auto page = pageWith({}, showText(72, 700, "Turned"));
    const auto before = page->selection({0, 6});
    ASSERT_TRUE(page->setRotation(270));
    const auto after = page->selection({0, 6});
    ASSERT_TRUE(before && after);
    EXPECT_EQ(after->string(), before->string());
    EXPECT_EQ(after->bounds(*page), before->bounds(*page));
}

TEST_F(PDFPageRotationTest, ModifiesTheDocumentUnlessItChangesNothing)
{
    const auto page = pageWith({});
    ASSERT_TRUE(page->setRotation(360));
    EXPECT_FALSE(page->document()->isModified());
    ASSERT_TRUE(page->setRotation(90));
    EXPECT_TRUE(page->document()->isModified());
}

TEST_F(PDFPageRotationTest, StaysWhenThePageIsAskedForAgain)
{
    auto page = pageWith({});
    const auto document = page->document();
    ASSERT_TRUE(page->setRotation(180));
    page.reset();
    EXPECT_EQ(document->page(0)->rotation(), 180);
}

TEST_F(PDFPageRotationTest, TurnsEveryPageThatIsMadeOfTheSameObject)
{
    PDFWriter writer;
    const QByteArray page = QByteArray::number(writer.addPage({})) + " 0 R ";
    writer.replace(2, "<</Type/Pages/Count 2/Kids[" + page + page + "]>>");
    const auto document = PDFDocument::open(m_folder.write(QStringLiteral("twice.pdf"), writer.bytes()));
    const auto other = (*document)->page(1);
    ASSERT_TRUE((*document)->page(0)->setRotation(90));
    EXPECT_EQ(other->rotation(), 90);
}

TEST_F(PDFPageRotationTest, GivesAWholeStateToThreadsThatReadMeanwhile)
{
    const auto page = pageWith("/MediaBox[0 0 200 300]", showText(20, 100, "Text"));
    std::atomic<bool> done = false;
    std::atomic<int> wrong = 0;
    std::thread reader([&] {
        while (!done) {
            const auto list = page->contentDisplayList();
            const QSizeF size = list ? list->displaySize() : QSizeF();
            if (size != QSizeF(200, 300) && size != QSizeF(300, 200))
                ++wrong;
            const QTransform transform = page->pageToDisplay();
            if (!transform.isInvertible() || page->displaySize().isEmpty())
                ++wrong;
        }
    });
    for (int i = 1; i <= 400; ++i)
        EXPECT_TRUE(page->setRotation(i * 90));
    done = true;
    reader.join();
    EXPECT_EQ(wrong, 0);
}

} // namespace
} // namespace pdf
