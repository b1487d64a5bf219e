// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/PDFDocument.h"
#include "pdf/PDFPage.h"
#include "support/PDFWriter.h"

#include <gtest/gtest.h>

namespace pdf {
namespace {

std::shared_ptr<PDFDocument> open(const PDFWriter& writer)
{
    const TestFolder folder;
    auto document = PDFDocument::open(folder.write(QStringLiteral("tree.pdf"), writer.bytes()));
    if (!document) {
        ADD_FAILURE() << document.error().message.toStdString();
        return nullptr;
    }
    return *document;
}

/// A page is known by its width.
QByteArray pageOfWidth(int width)
{
    return "<</Type/Page/MediaBox[0 0 " + QByteArray::number(width) + " 100]>>";
}

int widthOf(PDFDocument& document, int index)
{
    const auto page = document.page(index);
    return page ? static_cast<int>(page->displaySize().width()) : 0;
}

PDFWriter threePages(const QByteArray& count)
{
    PDFWriter writer;
    for (int i = 0; i < 3; ++i)
        writer.addPage({}, "/MediaBox[0 0 " + QByteArray::number(100 + i) + " 100]");
    writer.setCount(count);
    return writer;
}

TEST(PageTreeTest, CountsThePagesItselfWhenTheFileCountsNegatively)
{
    EXPECT_EQ(open(threePages("-3"))->pageCount(), 3);
}

TEST(PageTreeTest, CountsThePagesItselfWhenTheFileClaimsMoreThanItHasObjects)
{
    const auto document = open(threePages("2147483647"));
    EXPECT_EQ(document->pageCount(), 3);
    EXPECT_EQ(widthOf(*document, 2), 102);
}

TEST(PageTreeTest, CountsThePagesItselfWhenTheFileClaimsTooFew)
{
    const auto document = open(threePages("1"));
    EXPECT_EQ(document->pageCount(), 3);
    EXPECT_EQ(widthOf(*document, 2), 102);
}

TEST(PageTreeTest, CountsThePagesItselfWhenTheCountIsNoNumber)
{
    EXPECT_EQ(open(threePages("/Many"))->pageCount(), 3);
}

TEST(PageTreeTest, FindsPagesInBranches)
{
    PDFWriter writer;
    const int first = writer.add(pageOfWidth(101));
    const int second = writer.add(pageOfWidth(102));
    const int third = writer.add(pageOfWidth(103));
    const auto number = [](int object) { return QByteArray::number(object) + " 0 R "; };
    const int branch = writer.add("<</Type/Pages/Count 2/Kids[" + number(first) + number(second) + "]>>");
    writer.replace(2, "<</Type/Pages/Count 3/Kids[" + number(branch) + number(third) + "]>>");
    const auto document = open(writer);
    ASSERT_EQ(document->pageCount(), 3);
    EXPECT_EQ(widthOf(*document, 2), 103);
    EXPECT_EQ(widthOf(*document, 0), 101);
    EXPECT_EQ(widthOf(*document, 1), 102);
}

TEST(PageTreeTest, FindsEveryPageWhereABranchMiscounts)
{
    PDFWriter writer;
    const int first = writer.add(pageOfWidth(101));
    const int second = writer.add(pageOfWidth(102));
    const int third = writer.add(pageOfWidth(103));
    const auto number = [](int object) { return QByteArray::number(object) + " 0 R "; };
    // Each branch holds another number of pages than it says; only the sum is right.
    const int one = writer.add("<</Type/Pages/Count 1/Kids[" + number(first) + number(second) + "]>>");
    const int two = writer.add("<</Type/Pages/Count 2/Kids[" + number(third) + "]>>");
    writer.replace(2, "<</Type/Pages/Count 3/Kids[" + number(one) + number(two) + "]>>");
    const auto document = open(writer);
    ASSERT_EQ(document->pageCount(), 3);
    EXPECT_EQ(widthOf(*document, 0), 101);
    EXPECT_EQ(widthOf(*document, 1), 102);
    EXPECT_EQ(widthOf(*document, 2), 103);
}

TEST(PageTreeTest, FindsPagesWhereTheTypesAreMissing)
{
    PDFWriter writer;
    const int page = writer.add("<</MediaBox[0 0 101 100]>>");
    writer.replace(2, "<</Count 1/Kids[" + QByteArray::number(page) + " 0 R]>>");
    EXPECT_EQ(widthOf(*open(writer), 0), 101);
}

TEST(PageTreeTest, EndsWhereTheTreeRunsInACircle)
{
    PDFWriter writer;
    const int page = writer.add(pageOfWidth(101));
    writer.replace(2, "<</Type/Pages/Count 5/Kids[2 0 R " + QByteArray::number(page) + " 0 R]>>");
    const auto document = open(writer);
    EXPECT_EQ(document->pageCount(), 1);
    EXPECT_EQ(widthOf(*document, 0), 101);
}

TEST(PageTreeTest, LeavesOutAKidThatIsNoPage)
{
    PDFWriter writer;
    const int page = writer.add(pageOfWidth(101));
    writer.replace(2, "<</Type/Pages/Count 2/Kids[" + QByteArray::number(page) + " 0 R 999 0 R]>>");
    const auto document = open(writer);
    ASSERT_EQ(document->pageCount(), 2);
    EXPECT_EQ(widthOf(*document, 0), 101);
    EXPECT_FALSE(document->page(1));
}

TEST(PageTreeTest, TakesThePagesThatThereAreWhenThereIsNoTree)
{
    PDFWriter writer;
    writer.add(pageOfWidth(101));
    writer.add(pageOfWidth(102));
    writer.replace(2, "null");
    const auto document = open(writer);
    ASSERT_EQ(document->pageCount(), 2);
    EXPECT_EQ(widthOf(*document, 1), 102);
    EXPECT_TRUE(document->page(1)->contentDisplayList());
}

TEST(PageTreeTest, TakesTwentyThousandPagesInAnyOrder)
{
    constexpr int pageCount = 20000;
    PDFWriter writer;
    QByteArray kids;
    for (int i = 0; i < pageCount; ++i)
        kids += QByteArray::number(writer.add(pageOfWidth(100 + i % 100))) + " 0 R ";
    writer.replace(2, "<</Type/Pages/Count 20000/Kids[" + kids + "]>>");
    const auto document = open(writer);
    ASSERT_EQ(document->pageCount(), pageCount);
    EXPECT_EQ(widthOf(*document, pageCount - 1), 199);
    for (int i = 0; i < pageCount; ++i)
        ASSERT_EQ(widthOf(*document, i), 100 + i % 100) << "page " << i;
}

TEST(PageTreeTest, InheritsBoxesAndRotationFromTheTree)
{
    PDFWriter writer;
    const int page = writer.add("<</Type/Page/Parent 2 0 R>>");
    writer.replace(
        2,
        "<</Type/Pages/Count 1/Rotate 90/MediaBox[0 0 200 300]/Kids[" + QByteArray::number(page) + " 0 R]>>");
    const auto document = open(writer);
    EXPECT_EQ(document->page(0)->rotation(), 90);
    EXPECT_EQ(document->page(0)->displaySize(), QSizeF(300, 200));
}

} // namespace
} // namespace pdf
