// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/PDFDisplayList.h"
#include "pdf/PDFDocument.h"
#include "pdf/PDFPage.h"
#include "support/PDFWriter.h"

#include <gtest/gtest.h>

#include <QDateTime>
#include <QFile>

// What other programs do to the file of an open document.
namespace pdf {
namespace {

constexpr int pageCount = 30;
constexpr int lastPage = pageCount - 1;

/// Pages that are too heavy for several of them to be read at once.
QByteArray heavyPages(const QByteArray& name)
{
    PDFWriter writer;
    for (int page = 0; page < pageCount; ++page)
        writer.addPage(showText(72, 700, name) + QByteArray(8000, ' '));
    return writer.bytes();
}

class ChangedFileTest : public testing::Test
{
protected:
    ChangedFileTest()
        : m_path(m_folder.write(QStringLiteral("open.pdf"), heavyPages("before")))
    {
        if (const auto document = PDFDocument::open(m_path))
            m_document = *document;
    }

    void SetUp() override { ASSERT_TRUE(m_document); }

    /// As the last page is drawn. Nothing when it can be.
    std::optional<PDFError::Code> failureOfTheLastPage()
    {
        const auto page = m_document->page(lastPage);
        if (!page)
            return PDFError::Code::damaged;
        const auto list = page->contentDisplayList();
        return list ? std::nullopt : std::optional(list.error().code);
    }

    void expectAllIsThere()
    {
        EXPECT_TRUE(m_document->isFileReadable());
        EXPECT_EQ(failureOfTheLastPage(), std::nullopt);
        const auto page = m_document->page(lastPage);
        ASSERT_TRUE(page);
        EXPECT_EQ(page->string(), QStringLiteral("before\n"));
    }

    TestFolder m_folder;
    const QString m_path;
    std::shared_ptr<PDFDocument> m_document;
};

TEST_F(ChangedFileTest, TellsAFileThatWasCutShort)
{
    EXPECT_TRUE(m_document->isFileReadable());
    ASSERT_TRUE(QFile::resize(m_path, 10000));
    EXPECT_FALSE(m_document->isFileReadable());
}

TEST_F(ChangedFileTest, DrawsNoPageOfAFileThatWasCutShort)
{
    // The page itself is known, its content is not.
    const auto page = m_document->page(lastPage);
    ASSERT_TRUE(page);
    ASSERT_TRUE(QFile::resize(m_path, 10000));
    EXPECT_EQ(failureOfTheLastPage(), PDFError::Code::changedMeanwhile);
    EXPECT_EQ(page->string(), std::nullopt);
}

TEST_F(ChangedFileTest, DrawsNoPageOfAFileThatWasOverwritten)
{
    const auto page = m_document->page(lastPage);
    ASSERT_TRUE(page);
    m_folder.write(QStringLiteral("open.pdf"), heavyPages("and quite another document") + heavyPages("more"));
    EXPECT_FALSE(m_document->isFileReadable());
    EXPECT_EQ(failureOfTheLastPage(), PDFError::Code::changedMeanwhile);
}

TEST_F(ChangedFileTest, ReadsOnInAFileThatWasAddedTo)
{
    QFile file(m_path);
    ASSERT_TRUE(file.open(QIODevice::Append));
    file.write("% an update");
    file.close();
    expectAllIsThere();
}

TEST_F(ChangedFileTest, ReadsOnInAFileThatWasTouched)
{
    QFile file(m_path);
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    ASSERT_TRUE(
        file.setFileTime(QDateTime::currentDateTime().addSecs(-3600), QFileDevice::FileModificationTime));
    file.close();
    expectAllIsThere();
}

TEST_F(ChangedFileTest, ReadsOnWhenAnotherFileTookItsPlaceOrNone)
{
    ASSERT_TRUE(QFile::remove(m_path));
    expectAllIsThere();
    ASSERT_TRUE(QFile::rename(m_folder.write(QStringLiteral("new.pdf"), "no PDF"), m_path));
    expectAllIsThere();
}

TEST_F(ChangedFileTest, ReadsOnWhereItsContentWasSavedFromTheChange)
{
    const auto first = m_document->page(0);
    ASSERT_TRUE(first);
    // What is changed here must not be lost, so the file is copied away.
    ASSERT_TRUE(first->setRotation(90));
    ASSERT_TRUE(QFile::resize(m_path, 10000));
    expectAllIsThere();
}

} // namespace
} // namespace pdf
