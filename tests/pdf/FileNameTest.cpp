// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/FileName.h"

#include "Tools.h"
#include "pdf/PDFDocument.h"
#include "pdf/PDFPage.h"
#include "support/PDFWriter.h"
#include "support/Printing.h"

#include <gtest/gtest.h>

#include <QDir>

#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <vector>

namespace pdf {
namespace {

/// A document of one page in a folder whose name, as its own, is no UTF-8.
class ByteNameTest : public testing::Test
{
protected:
    ByteNameTest()
    {
        PDFWriter writer;
        writer.addPage(showText(72, 700, "Old archive"));
        const QString plain = m_folder.write(QStringLiteral("plain.pdf"), writer.bytes());
        const QByteArray folder = m_folder.path(QStringLiteral("M")).toUtf8() + "\xe4rz";
        m_bytes = folder + "/caf\xe9.pdf";
        EXPECT_EQ(::mkdir(folder.constData(), 0700), 0);
        EXPECT_EQ(::rename(plain.toUtf8().constData(), m_bytes.constData()), 0);
    }

    ~ByteNameTest() override
    {
        // The folder cannot remove what Qt cannot name.
        for (const auto& entry : entries())
            std::filesystem::remove_all(entry);
    }

    /// What is in the folder.
    std::vector<std::filesystem::path> entries() const
    {
        const std::filesystem::directory_iterator all(m_folder.path({}).toStdString());
        return {begin(all), end(all)};
    }

    TestFolder m_folder;
    QByteArray m_bytes;
};

TEST(FileNameTest, CarriesEveryByteThroughText)
{
    for (const QByteArray& bytes :
         {QByteArray("plain.pdf"),
          QByteArray("Gr\xc3\xbc\xc3\x9f"
                     "e \xf0\x9f\x98\x80.pdf"),
          QByteArray("caf\xe9.pdf"), QByteArray("\xff\xfe\x80"), QByteArray("\xed\xb2\x80 encoded surrogate"),
          QByteArray("\xef\xbb\xbfmark"), QByteArray("\xef\xbb\xbfmark\xe9"),
          QByteArray("\xf0\x9f\x98\x80\x80"), QByteArray("cut \xe4\xb8")})
        EXPECT_EQ(bytesOfFileName(fileNameFromBytes(bytes)), bytes) << bytes.toHex().toStdString();
    EXPECT_EQ(
        fileNameFromBytes("Gr\xc3\xbc\xc3\x9f"
                          "e"),
        QStringLiteral("Grüße"));
}

TEST(FileNameTest, ShowsBytesThatAreNoTextAsTheirNumbers)
{
    EXPECT_EQ(printableFileName(fileNameFromBytes("caf\xe9 \xc3\xa9.pdf")), QStringLiteral("caf\\xE9 é.pdf"));
    EXPECT_EQ(
        printableFileName(QUrl::fromEncoded("file:///archive/caf%E9.pdf")), QStringLiteral("caf\\xE9.pdf"));
    EXPECT_EQ(
        printableFileName(QUrl::fromLocalFile(QStringLiteral("/a/100% 😀.pdf"))),
        QStringLiteral("100% 😀.pdf"));
}

TEST(FileNameTest, CarriesEveryByteThroughAURL)
{
    for (const QByteArray& bytes :
         {QByteArray("/a/plain.pdf"), QByteArray("/a/100%25 #1?.pdf"), QByteArray("/a/caf\xe9 #1?%41.pdf"),
          QByteArray("/a/:colon.pdf"), QByteArray("/a/\xc3\xa9\xe9.pdf")}) {
        const QUrl url = fileURL(fileNameFromBytes(bytes));
        EXPECT_TRUE(url.isLocalFile());
        EXPECT_EQ(bytesOfFileName(filePath(url)), bytes) << url.toEncoded().toStdString();
        EXPECT_EQ(bytesOfFileName(filePath(QUrl(url.toString(QUrl::FullyEncoded)))), bytes);
    }
    EXPECT_EQ(filePath(QUrl(QStringLiteral("https://example.org/a.pdf"))), QString());
}

TEST(FileNameTest, TakesAColonAtTheStartForAPartOfTheName)
{
    EXPECT_EQ(absoluteFilePath(QStringLiteral(":a.pdf")), QDir::currentPath() + QStringLiteral("/:a.pdf"));
    EXPECT_EQ(absoluteFilePath(QStringLiteral("/x/./y/../:a.pdf")), QStringLiteral("/x/:a.pdf"));
}

TEST_F(ByteNameTest, IsOpenedAndFoundAgainByItsURL)
{
    const auto document = PDFDocument::open(fileNameFromBytes(m_bytes));
    ASSERT_TRUE(document) << document.error().message.toStdString();
    EXPECT_EQ((*document)->page(0)->string(), QStringLiteral("Old archive\n"));
    EXPECT_TRUE(PDFDocument::open(filePath((*document)->documentURL())));
}

TEST_F(ByteNameTest, IsSavedInItsPlaceAndNowhereElse)
{
    const QString path = fileNameFromBytes(m_bytes);
    const auto document = PDFDocument::open(path);
    ASSERT_TRUE(document);
    ASSERT_TRUE((*document)->page(0)->setRotation(90));
    const auto written = (*document)->write(path);
    ASSERT_TRUE(written) << written.error().message.toStdString();
    EXPECT_FALSE((*document)->isModified()) << "it knows that this was its own file";
    const auto saved = PDFDocument::open(path);
    ASSERT_TRUE(saved);
    EXPECT_EQ((*saved)->page(0)->rotation(), 90);
    EXPECT_EQ(entries().size(), 1U);
}

TEST_F(ByteNameTest, IsSavedThroughALinkWhoseNameIsUtf8)
{
    const QString link = m_folder.path(QStringLiteral("link.pdf"));
    ASSERT_EQ(::symlink(m_bytes.constData(), link.toUtf8().constData()), 0);
    const auto document = PDFDocument::open(link);
    ASSERT_TRUE(document);
    ASSERT_TRUE((*document)->page(0)->setRotation(90));
    ASSERT_TRUE((*document)->write(link));
    EXPECT_EQ((*PDFDocument::open(fileNameFromBytes(m_bytes)))->page(0)->rotation(), 90);
}

TEST(FileNameTest, AZeroByteDoesNotEndAName)
{
    const TestFolder folder;
    PDFWriter writer;
    writer.addPage({});
    const QString path = folder.write(QStringLiteral("a.pdf"), writer.bytes());
    EXPECT_TRUE(PDFDocument::open(path));
    EXPECT_FALSE(PDFDocument::open(path + QChar(0) + QStringLiteral("b")));
}

} // namespace
} // namespace pdf
