// SPDX-License-Identifier: AGPL-3.0-or-later
#include "Tools.h"
#include "pdf/PDFDocument.h"
#include "pdf/PDFPage.h"
#include "support/PDFWriter.h"
#include "support/Printing.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QRegularExpression>

namespace pdf {
namespace {

using Code = PDFError::Code;

class PDFDocumentWriteTest : public testing::Test
{
protected:
    /// A document of three pages that say where they are.
    QString writeSample(const QString& name = QStringLiteral("sample.pdf"))
    {
        PDFWriter writer;
        writer.addPage(showText(72, 700, "One"));
        writer.addPage(showText(72, 700, "Two"));
        writer.addPage(showText(72, 700, "Three"));
        return m_folder.write(name, writer.bytes());
    }

    std::shared_ptr<PDFDocument> open(const QString& path)
    {
        auto document = PDFDocument::open(path);
        if (!document) {
            ADD_FAILURE() << document.error().message.toStdString();
            return nullptr;
        }
        return *document;
    }

    /// The rotations of all pages of a file.
    std::vector<int> rotations(const QString& path)
    {
        std::vector<int> result;
        if (const auto document = open(path)) {
            for (int i = 0; i < document->pageCount(); ++i)
                result.push_back(document->page(i)->rotation());
        }
        return result;
    }

    void expectSound(const QString& path, const QStringList& options = {})
    {
        const auto checked =
            runTool(QStringLiteral("qpdf"), options + QStringList{QStringLiteral("--check"), path});
        if (!checked)
            GTEST_SKIP() << "qpdf is not installed";
        EXPECT_EQ(checked->exitCode, 0) << checked->output.toStdString();
    }

    TestFolder m_folder;
};

TEST_F(PDFDocumentWriteTest, SavesARotationOverItsOwnFile)
{
    const QString path = writeSample();
    const auto document = open(path);
    ASSERT_TRUE(document->page(1)->setRotation(90));
    ASSERT_TRUE(document->write(path));
    EXPECT_EQ(rotations(path), (std::vector{0, 90, 0}));
    expectSound(path);
}

TEST_F(PDFDocumentWriteTest, AppendsToWhatWasThere)
{
    const QString path = writeSample();
    const QByteArray before = readFile(path);
    const auto document = open(path);
    ASSERT_TRUE(document->page(0)->setRotation(90));
    ASSERT_TRUE(document->write(path));
    const QByteArray after = readFile(path);
    EXPECT_GT(after.size(), before.size());
    EXPECT_TRUE(after.startsWith(before));
}

TEST_F(PDFDocumentWriteTest, WritesAnUnchangedDocumentByteForByte)
{
    const QString path = writeSample();
    const QString copy = m_folder.path(QStringLiteral("copy.pdf"));
    ASSERT_TRUE(open(path)->write(copy));
    EXPECT_EQ(readFile(copy), readFile(path));
}

TEST_F(PDFDocumentWriteTest, GivesPagesATreeThatHadNone)
{
    PDFWriter writer;
    const int parent = writer.add("<</Type/Nothing/MediaBox[0 0 321 200]/Rotate 90>>");
    for (int i = 0; i < 2; ++i)
        writer.add("<</Type/Page/Parent " + QByteArray::number(parent) + " 0 R>>");
    writer.replace(2, "null");
    const QString path = m_folder.write(QStringLiteral("strays.pdf"), writer.bytes());
    const QString copy = m_folder.path(QStringLiteral("copy.pdf"));
    const auto document = open(path);
    ASSERT_EQ(document->pageCount(), 2);
    ASSERT_TRUE(document->write(copy));
    EXPECT_EQ(document->pageCount(), 2);
    EXPECT_EQ(programsAgainst(copy).join(u' ').toStdString(), "");
    const auto saved = open(copy);
    ASSERT_EQ(saved->pageCount(), 2);
    EXPECT_EQ(saved->page(1)->displaySize(), QSizeF(200, 321)) << "what the pages had from elsewhere";
    EXPECT_EQ(saved->page(1)->rotation(), 90);
}

TEST_F(PDFDocumentWriteTest, GoesOnWorkingAfterItWasWritten)
{
    const QString path = writeSample();
    const auto document = open(path);
    ASSERT_TRUE(document->page(0)->setRotation(90));
    ASSERT_TRUE(document->write(path));
    EXPECT_EQ(document->page(2)->string(), QStringLiteral("Three\n"));
    ASSERT_TRUE(document->page(2)->setRotation(180));
    ASSERT_TRUE(document->page(0)->setRotation(270));
    ASSERT_TRUE(document->write(path));
    EXPECT_EQ(rotations(path), (std::vector{270, 0, 180}));
    expectSound(path);
}

TEST_F(PDFDocumentWriteTest, DoesNotGrowTheFileWithEveryWrite)
{
    const QString path = writeSample();
    const auto document = open(path);
    ASSERT_TRUE(document->page(0)->setRotation(90));
    ASSERT_TRUE(document->write(path));
    const qint64 size = QFile(path).size();
    ASSERT_TRUE(document->write(path));
    EXPECT_EQ(QFile(path).size(), size);
}

TEST_F(PDFDocumentWriteTest, ChangesAFileThatItHasWrittenBefore)
{
    const QString path = writeSample();
    ASSERT_TRUE(open(path)->page(0)->setRotation(90));
    for (int round = 1; round <= 3; ++round) {
        const QByteArray before = readFile(path);
        const auto document = open(path);
        ASSERT_TRUE(document->page(round - 1)->setRotation(90 * round));
        ASSERT_TRUE(document->write(path));
        EXPECT_TRUE(readFile(path).startsWith(before));
    }
    EXPECT_EQ(rotations(path), (std::vector{90, 180, 270}));
    expectSound(path);
}

TEST_F(PDFDocumentWriteTest, IsModifiedUntilItIsWrittenToItsOwnFile)
{
    const QString path = writeSample();
    const auto document = open(path);
    ASSERT_TRUE(document->page(0)->setRotation(90));
    ASSERT_TRUE(document->write(m_folder.path(QStringLiteral("copy.pdf"))));
    EXPECT_TRUE(document->isModified());
    ASSERT_TRUE(document->write(path));
    EXPECT_FALSE(document->isModified());
    ASSERT_TRUE(document->page(0)->setRotation(0));
    EXPECT_TRUE(document->isModified());
}

TEST_F(PDFDocumentWriteTest, LeavesTheDocumentsOwnFileAloneWhenItIsWrittenElsewhere)
{
    const QString path = writeSample();
    const QString copy = m_folder.path(QStringLiteral("copy.pdf"));
    const QByteArray before = readFile(path);
    const auto document = open(path);
    ASSERT_TRUE(document->page(0)->setRotation(90));
    ASSERT_TRUE(document->write(copy));
    EXPECT_EQ(readFile(path), before);
    EXPECT_EQ(rotations(copy), (std::vector{90, 0, 0}));
}

TEST_F(PDFDocumentWriteTest, UpdatesAFileThatHasACrossReferenceStream)
{
    const QString plain = writeSample();
    const QString path = m_folder.path(QStringLiteral("streams.pdf"));
    const auto made =
        runTool(QStringLiteral("qpdf"), {QStringLiteral("--object-streams=generate"), plain, path});
    if (!made)
        GTEST_SKIP() << "qpdf is not installed";
    const QByteArray before = readFile(path);
    ASSERT_TRUE(before.contains("/XRef"));
    const auto document = open(path);
    ASSERT_TRUE(document->page(1)->setRotation(90));
    ASSERT_TRUE(document->write(path));
    EXPECT_TRUE(readFile(path).startsWith(before));
    EXPECT_EQ(rotations(path), (std::vector{0, 90, 0}));
    expectSound(path);
}

TEST_F(PDFDocumentWriteTest, AnObjectOutOfAnObjectStreamKeepsItsName)
{
    const QString plain = writeSample();
    const QString path = m_folder.path(QStringLiteral("streams.pdf"));
    if (!runTool(QStringLiteral("qpdf"), {QStringLiteral("--object-streams=generate"), plain, path}))
        GTEST_SKIP() << "qpdf is not installed";
    const auto size = readFile(path).size();
    const auto document = open(path);
    for (int page = 0; page < 3; ++page)
        ASSERT_TRUE(document->page(page)->setRotation(90));
    ASSERT_TRUE(document->write(path));
    // Such objects have the generation 0, by which they are referred to.
    const QString update = QString::fromLatin1(readFile(path).mid(size));
    const QRegularExpression otherGeneration(QStringLiteral("\\n\\d+ [1-9]\\d* obj"));
    EXPECT_EQ(otherGeneration.match(update).captured(), QString());
    const auto seen = runTool(
        QStringLiteral("pdfinfo"),
        {QStringLiteral("-f"), QStringLiteral("1"), QStringLiteral("-l"), QStringLiteral("3"), path});
    if (seen) {
        EXPECT_EQ(QString::fromLatin1(seen->output).count(QRegularExpression(QStringLiteral("rot: +90"))), 3)
            << seen->output.toStdString();
    }
}

TEST_F(PDFDocumentWriteTest, UpdatesALinearizedFile)
{
    const QString plain = writeSample();
    const QString path = m_folder.path(QStringLiteral("linear.pdf"));
    if (!runTool(QStringLiteral("qpdf"), {QStringLiteral("--linearize"), plain, path}))
        GTEST_SKIP() << "qpdf is not installed";
    const QByteArray before = readFile(path);
    const auto document = open(path);
    ASSERT_TRUE(document->page(2)->setRotation(270));
    ASSERT_TRUE(document->write(path));
    EXPECT_TRUE(readFile(path).startsWith(before));
    EXPECT_EQ(rotations(path), (std::vector{0, 0, 270}));
    // qpdf looks at the hints of the first version and finds that they no longer fit, as they may.
    expectSound(path);
}

TEST_F(PDFDocumentWriteTest, WritesARepairedFileAnew)
{
    PDFWriter writer;
    writer.addPage(showText(72, 700, "Saved"));
    QByteArray bytes = writer.bytes();
    bytes.truncate(bytes.indexOf("xref"));
    const QString path = m_folder.write(QStringLiteral("broken.pdf"), bytes);
    const auto document = open(path);
    ASSERT_TRUE(document->page(0)->setRotation(90));
    ASSERT_TRUE(document->write(path));
    expectSound(path);
    EXPECT_FALSE(readFile(path).startsWith(bytes));
    EXPECT_EQ(rotations(path), (std::vector{90}));
    EXPECT_EQ(open(path)->page(0)->string(), QStringLiteral("Saved\n"));

    ASSERT_TRUE(document->page(0)->setRotation(180));
    ASSERT_TRUE(document->write(path));
    expectSound(path);
    EXPECT_EQ(rotations(path), (std::vector{180}));
}

TEST_F(PDFDocumentWriteTest, KeepsChangesWhenDamageComesToLightAfterThem)
{
    PDFWriter writer;
    writer.addPage(showText(72, 700, "One"));
    writer.addPage(showText(72, 700, "Two"));
    QByteArray bytes = writer.bytes();
    // The table says of the last page's dictionary that it is where it is not.
    const QByteArray offset = QByteArray::number(bytes.lastIndexOf("7 0 obj")).rightJustified(10, '0');
    ASSERT_EQ(bytes.count(offset), 1);
    bytes.replace(offset, "0000000020");
    const QString path = m_folder.write(QStringLiteral("damaged.pdf"), bytes);

    const auto document = open(path);
    const auto first = document->page(0);
    ASSERT_TRUE(first->setRotation(90));
    const auto second = document->page(1);
    ASSERT_TRUE(second);
    EXPECT_EQ(second->string(), QStringLiteral("Two\n"));
    EXPECT_EQ(first->rotation(), 90);
    ASSERT_TRUE(document->write(path));
    expectSound(path);
    EXPECT_EQ(rotations(path), (std::vector{90, 0}));
}

TEST_F(PDFDocumentWriteTest, KeepsTheIdentityAndChangesItsSecondPart)
{
    const QString plain = writeSample();
    const QString path = m_folder.path(QStringLiteral("identity.pdf"));
    if (!runTool(QStringLiteral("qpdf"), {QStringLiteral("--static-id"), plain, path}))
        GTEST_SKIP() << "qpdf is not installed";
    const auto document = open(path);
    ASSERT_TRUE(document->page(0)->setRotation(90));
    ASSERT_TRUE(document->write(path));
    const auto trailer = runTool(QStringLiteral("qpdf"), {QStringLiteral("--show-object=trailer"), path});
    EXPECT_TRUE(trailer->output.contains("/ID [ <31415926535897932384626433832795> <"))
        << trailer->output.toStdString();
    EXPECT_FALSE(trailer->output.contains("> <31415926535897932384626433832795>"));
}

} // namespace
} // namespace pdf
