// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/PDFDocument.h"
#include "pdf/PDFPage.h"
#include "support/PDFWriter.h"
#include "support/Printing.h"

#include <gtest/gtest.h>

#include <QDir>

namespace pdf {
namespace {

using Code = PDFError::Code;

class PDFDocumentTest : public testing::Test
{
protected:
    std::shared_ptr<PDFDocument> open(const QByteArray& bytes)
    {
        auto document = PDFDocument::open(m_folder.write(QStringLiteral("test.pdf"), bytes));
        if (!document) {
            ADD_FAILURE() << document.error().message.toStdString();
            return nullptr;
        }
        return *document;
    }

    Code openingFailure(const QString& path)
    {
        const auto document = PDFDocument::open(path);
        if (document) {
            ADD_FAILURE() << "the file was opened";
            return Code::cancelled;
        }
        EXPECT_FALSE(document.error().message.isEmpty());
        return document.error().code;
    }

    TestFolder m_folder;
};

TEST_F(PDFDocumentTest, OpensAFileAndTellsItsPages)
{
    PDFWriter writer;
    writer.addPage(showText(72, 700, "One"));
    writer.addPage(showText(72, 700, "Two"));
    const QString path = m_folder.write(QStringLiteral("two pages.pdf"), writer.bytes());

    const auto document = PDFDocument::open(path);

    ASSERT_TRUE(document);
    EXPECT_FALSE((*document)->isLocked());
    EXPECT_EQ((*document)->pageCount(), 2);
    EXPECT_EQ((*document)->documentURL().toLocalFile(), path);
    const auto page = (*document)->page(1);
    ASSERT_TRUE(page);
    EXPECT_EQ(page->index(), 1);
    EXPECT_EQ((*document)->index(*page), 1);
    EXPECT_EQ(page->document(), *document);
}

TEST_F(PDFDocumentTest, GivesTheSamePageWhileItIsHeld)
{
    PDFWriter writer;
    writer.addPage({});
    const auto document = open(writer.bytes());
    const auto page = document->page(0);
    EXPECT_EQ(document->page(0), page);
}

TEST_F(PDFDocumentTest, HasNoPageOutsideItsPages)
{
    PDFWriter writer;
    writer.addPage({});
    const auto document = open(writer.bytes());
    EXPECT_FALSE(document->page(-1));
    EXPECT_FALSE(document->page(1));
}

TEST_F(PDFDocumentTest, KnowsNoIndexOfAnotherDocumentsPage)
{
    PDFWriter writer;
    writer.addPage({});
    const auto document = open(writer.bytes());
    const auto other = open(writer.bytes());
    EXPECT_EQ(document->index(*other->page(0)), -1);
}

TEST_F(PDFDocumentTest, RefusesAMissingFile)
{
    EXPECT_EQ(openingFailure(m_folder.path(QStringLiteral("missing.pdf"))), Code::unreadable);
}

TEST_F(PDFDocumentTest, RefusesAFolder)
{
    EXPECT_EQ(openingFailure(m_folder.path(QString())), Code::unreadable);
}

TEST_F(PDFDocumentTest, RefusesADevice)
{
    EXPECT_EQ(openingFailure(QStringLiteral("/dev/zero")), Code::unreadable);
}

TEST_F(PDFDocumentTest, RefusesAnEmptyFile)
{
    EXPECT_EQ(openingFailure(m_folder.write(QStringLiteral("empty.pdf"), {})), Code::notPDF);
}

TEST_F(PDFDocumentTest, RefusesAFileThatIsNoPDF)
{
    EXPECT_EQ(
        openingFailure(m_folder.write(QStringLiteral("text.pdf"), "Dear reader,\nthis is a letter.\n")),
        Code::notPDF);
}

TEST_F(PDFDocumentTest, OpensADocumentWithoutPages)
{
    EXPECT_EQ(open(PDFWriter().bytes())->pageCount(), 0);
}

TEST_F(PDFDocumentTest, RepairsAFileWhoseEndIsMissing)
{
    PDFWriter writer;
    writer.addPage(showText(72, 700, "Saved"));
    QByteArray bytes = writer.bytes();
    bytes.truncate(bytes.indexOf("xref"));
    const auto document = open(bytes);
    ASSERT_EQ(document->pageCount(), 1);
    EXPECT_EQ(document->page(0)->string(), QStringLiteral("Saved\n"));
}

} // namespace
} // namespace pdf
