// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/PDFDocument.h"
#include "pdf/PDFPage.h"
#include "pdf/Tools.h"
#include "support/PDFWriter.h"
#include "support/Printing.h"

#include <gtest/gtest.h>

#include <QStandardPaths>

namespace pdf {
namespace {

const QString qpdf = QStringLiteral("qpdf");
const QString user = QStringLiteral("user");
const QString owner = QStringLiteral("owner");
const QString strong = QStringLiteral("256");

/// A document of one page that says "Secret", encrypted by qpdf.
class PDFEncryptionTest : public testing::Test
{
protected:
    void SetUp() override
    {
        if (QStandardPaths::findExecutable(qpdf).isEmpty())
            GTEST_SKIP() << "qpdf is not installed";
    }

    void encrypt(
        const QString& userPassword, const QString& ownerPassword, const QString& bits,
        const QStringList& more = {})
    {
        PDFWriter writer;
        writer.addPage(showText(72, 700, "Secret"));
        const QString plain = m_folder.write(QStringLiteral("plain.pdf"), writer.bytes());
        const QString encrypted = m_folder.path(QStringLiteral("encrypted.pdf"));
        QStringList arguments = {
            QStringLiteral("--allow-weak-crypto"), QStringLiteral("--encrypt"), userPassword, ownerPassword,
            bits};
        arguments += more;
        arguments += {QStringLiteral("--"), plain, encrypted};
        const auto result = runTool(qpdf, arguments);
        EXPECT_EQ(result->exitCode, 0) << result->output.toStdString();
        m_document = *PDFDocument::open(encrypted);
    }

    void expectUnlockedBy(const QString& password)
    {
        EXPECT_TRUE(m_document->isLocked());
        EXPECT_TRUE(m_document->unlock(password));
        EXPECT_FALSE(m_document->isLocked());
        ASSERT_EQ(m_document->pageCount(), 1);
        EXPECT_EQ(m_document->page(0)->string(), QStringLiteral("Secret\n"));
    }

    TestFolder m_folder;
    std::shared_ptr<PDFDocument> m_document;
};

TEST_F(PDFEncryptionTest, HasNoPagesWhileItIsLocked)
{
    encrypt(user, owner, strong);
    EXPECT_TRUE(m_document->isLocked());
    EXPECT_EQ(m_document->pageCount(), 0);
    EXPECT_FALSE(m_document->page(0));
}

TEST_F(PDFEncryptionTest, StaysLockedAfterAWrongPassword)
{
    encrypt(user, owner, strong);
    EXPECT_FALSE(m_document->unlock(QStringLiteral("guess")));
    EXPECT_FALSE(m_document->unlock(QString()));
    EXPECT_EQ(m_document->pageCount(), 0);
    expectUnlockedBy(user);
}

TEST_F(PDFEncryptionTest, TakesTheUserPassword)
{
    encrypt(user, owner, strong);
    expectUnlockedBy(user);
}

TEST_F(PDFEncryptionTest, TakesTheOwnerPassword)
{
    encrypt(user, owner, strong);
    expectUnlockedBy(owner);
}

TEST_F(PDFEncryptionTest, TakesAPasswordBeyondLatinLetters)
{
    encrypt(QStringLiteral("пароль"), owner, strong);
    expectUnlockedBy(QStringLiteral("пароль"));
}

TEST_F(PDFEncryptionTest, OpensAtOnceWhenOnlyTheOwnerHasAPassword)
{
    encrypt(QString(), owner, strong);
    EXPECT_FALSE(m_document->isLocked());
    EXPECT_EQ(m_document->page(0)->string(), QStringLiteral("Secret\n"));
}

TEST_F(PDFEncryptionTest, KnowsTheOlderCiphers)
{
    encrypt(user, owner, QStringLiteral("40"));
    expectUnlockedBy(user);
    encrypt(user, owner, QStringLiteral("128"), {QStringLiteral("--use-aes=y")});
    expectUnlockedBy(owner);
}

TEST_F(PDFEncryptionTest, NeedsNoPasswordTwice)
{
    encrypt(user, owner, strong);
    ASSERT_TRUE(m_document->unlock(user));
    EXPECT_TRUE(m_document->unlock(QStringLiteral("anything")));
    EXPECT_EQ(m_document->pageCount(), 1);
}

} // namespace
} // namespace pdf
