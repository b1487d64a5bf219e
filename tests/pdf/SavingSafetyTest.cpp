// SPDX-License-Identifier: AGPL-3.0-or-later
#include "FailingDisk.h"
#include "Tools.h"
#include "pdf/PDFDocument.h"
#include "pdf/PDFPage.h"
#include "support/PDFWriter.h"
#include "support/Printing.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <optional>

namespace pdf {
namespace {

using Code = PDFError::Code;

struct stat statusOf(const QString& path)
{
    struct stat status = {};
    EXPECT_EQ(::lstat(QFile::encodeName(path).constData(), &status), 0) << path.toStdString();
    return status;
}

int modeOf(const QString& path)
{
    return static_cast<int>(statusOf(path).st_mode & 07777);
}

class SavingSafetyTest : public testing::Test
{
protected:
    SavingSafetyTest()
    {
        PDFWriter writer;
        writer.addPage(showText(72, 700, "A contract"));
        m_original = writer.bytes();
        m_path = m_folder.write(QStringLiteral("contract.pdf"), m_original);
        m_document = *PDFDocument::open(m_path);
        EXPECT_TRUE(m_document->page(0)->setRotation(90));
    }

    /// Saves where that must fail, and sees to it that nothing is lost: what was in the folder of the target
    /// is still there and nothing else, and the document can be saved elsewhere with its changes.
    void expectFailure(
        const QString& target, Code code, const char* message, Overwrite overwrite = Overwrite::unlessChanged)
    {
        const QDir folder = QFileInfo(target).dir();
        const QStringList before = folder.entryList(QDir::AllEntries | QDir::Hidden);
        const QByteArray content = QFileInfo(target).isFile() ? readFile(target) : QByteArray();
        const auto written = m_document->write(target, overwrite);
        ASSERT_FALSE(written);
        EXPECT_EQ(written.error().code, code);
        EXPECT_EQ(written.error().message.toStdString(), message);
        EXPECT_EQ(folder.entryList(QDir::AllEntries | QDir::Hidden), before);
        if (QFileInfo(target).isFile()) {
            EXPECT_EQ(readFile(target), content);
        }
        EXPECT_TRUE(m_document->isModified());
    }

    void expectSavedTo(const QString& path)
    {
        const auto written = m_document->write(path, Overwrite::always);
        ASSERT_TRUE(written) << written.error().message.toStdString();
        const auto saved = PDFDocument::open(path);
        ASSERT_TRUE(saved);
        EXPECT_EQ((*saved)->page(0)->rotation(), 90);
        EXPECT_EQ((*saved)->page(0)->string(), QStringLiteral("A contract\n"));
    }

    QString elsewhere() const { return m_folder.path(QStringLiteral("elsewhere.pdf")); }

    TestFolder m_folder;
    QByteArray m_original;
    QString m_path;
    std::shared_ptr<PDFDocument> m_document;
};

TEST_F(SavingSafetyTest, FollowsASymbolicLink)
{
    const QString link = m_folder.path(QStringLiteral("link.pdf"));
    ASSERT_TRUE(QFile::link(QStringLiteral("contract.pdf"), link));
    expectSavedTo(link);
    EXPECT_TRUE(QFileInfo(link).isSymLink());
    EXPECT_FALSE(QFileInfo(m_path).isSymLink());
    EXPECT_NE(readFile(m_path), m_original);
}

TEST_F(SavingSafetyTest, FollowsASymbolicLinkThatLeadsToNoFileYet)
{
    const QString link = m_folder.path(QStringLiteral("link.pdf"));
    ASSERT_TRUE(QFile::link(QStringLiteral("elsewhere.pdf"), link));
    expectSavedTo(link);
    EXPECT_TRUE(QFileInfo(link).isSymLink());
    EXPECT_TRUE(QFileInfo(elsewhere()).isFile());
}

TEST_F(SavingSafetyTest, KnowsItsOwnFileThroughALink)
{
    const QString link = m_folder.path(QStringLiteral("link.pdf"));
    ASSERT_TRUE(QFile::link(m_path, link));
    ASSERT_TRUE(m_document->write(link));
    EXPECT_FALSE(m_document->isModified());
}

TEST_F(SavingSafetyTest, RefusesLinksInACircle)
{
    const QString first = m_folder.path(QStringLiteral("first.pdf"));
    const QString second = m_folder.path(QStringLiteral("second.pdf"));
    ASSERT_TRUE(QFile::link(second, first));
    ASSERT_TRUE(QFile::link(first, second));
    expectFailure(first, Code::unwritable, "the file is a link to itself");
    expectSavedTo(elsewhere());
}

TEST_F(SavingSafetyTest, KeepsThePermissions)
{
    for (const int mode : {0640, 0600, 0664}) {
        ASSERT_EQ(::chmod(QFile::encodeName(m_path).constData(), static_cast<mode_t>(mode)), 0);
        expectSavedTo(m_path);
        EXPECT_EQ(modeOf(m_path), mode);
    }
}

TEST_F(SavingSafetyTest, KeepsTheOwner)
{
    if (::geteuid() != 0)
        GTEST_SKIP() << "only the superuser gives files to others";
    ASSERT_EQ(::chown(QFile::encodeName(m_path).constData(), 1234, 4321), 0);
    expectSavedTo(m_path);
    EXPECT_EQ(statusOf(m_path).st_uid, 1234U);
    EXPECT_EQ(statusOf(m_path).st_gid, 4321U);
}

TEST_F(SavingSafetyTest, LeavesAReadOnlyFileAlone)
{
    ASSERT_EQ(::chmod(QFile::encodeName(m_path).constData(), 0444), 0);
    expectFailure(m_path, Code::unwritable, "the file is read-only");
    expectFailure(m_path, Code::unwritable, "the file is read-only", Overwrite::always);
    expectSavedTo(elsewhere());
}

TEST_F(SavingSafetyTest, WritesNothingIntoAReadOnlyFolder)
{
    const QString folder = m_folder.path(QStringLiteral("archive"));
    ASSERT_TRUE(QDir().mkdir(folder));
    const QString target = folder + QStringLiteral("/contract.pdf");
    ASSERT_TRUE(QFile::copy(m_path, target));
    ASSERT_EQ(::chmod(QFile::encodeName(target).constData(), 0666), 0);
    ASSERT_EQ(::chmod(QFile::encodeName(folder).constData(), 0555), 0);
    ASSERT_EQ(::chmod(QFile::encodeName(m_folder.path(QString())).constData(), 0755), 0);
    {
        const OrdinaryUser user;
        expectFailure(target, Code::unwritable, "the folder of the file cannot be written");
    }
    expectSavedTo(elsewhere());
    ASSERT_EQ(::chmod(QFile::encodeName(folder).constData(), 0755), 0);
}

TEST_F(SavingSafetyTest, SaysThatAFolderIsMissing)
{
    const auto written = m_document->write(m_folder.path(QStringLiteral("missing/contract.pdf")));
    ASSERT_FALSE(written);
    EXPECT_EQ(written.error().message, QStringLiteral("the folder of the file does not exist"));
    expectSavedTo(elsewhere());
}

TEST_F(SavingSafetyTest, DoesNotReplaceWhatIsNoFile)
{
    const QString folder = m_folder.path(QStringLiteral("folder.pdf"));
    ASSERT_TRUE(QDir().mkdir(folder));
    expectFailure(folder, Code::unwritable, "this is not a regular file");
    EXPECT_TRUE(QFileInfo(folder).isDir());
    expectSavedTo(elsewhere());
}

TEST_F(SavingSafetyTest, LeavesTheOldFileWhenTheDiskIsFull)
{
    // From no byte at all to the last one missing.
    expectSavedTo(elsewhere());
    const auto whole = static_cast<rlim_t>(QFileInfo(elsewhere()).size());
    for (const rlim_t size : {rlim_t{0}, rlim_t{1}, whole / 2, whole - 1}) {
        const FullDisk disk(size);
        expectFailure(m_path, Code::unwritable, "there is not enough space for the file");
    }
    EXPECT_EQ(readFile(m_path), m_original);
    expectSavedTo(m_path);
}

TEST_F(SavingSafetyTest, LeavesTheOldFileOnAFileSystemThatIsFull)
{
    const QString disk = m_folder.path(QStringLiteral("disk"));
    ASSERT_TRUE(QDir().mkdir(disk));
    const QByteArray place = QFile::encodeName(disk);
    if (::mount("tmpfs", place.constData(), "tmpfs", 0, "size=16k") != 0)
        GTEST_SKIP() << "this user may not mount a file system: " << std::strerror(errno);
    const QString target = disk + QStringLiteral("/contract.pdf");
    EXPECT_TRUE(QFile::copy(m_path, target));
    QFile filler(disk + QStringLiteral("/filler"));
    EXPECT_TRUE(filler.open(QFile::WriteOnly | QFile::Unbuffered));
    while (filler.write(QByteArray(512, 'x')) > 0) {
    }
    filler.close();

    expectFailure(target, Code::unwritable, "there is not enough space for the file");
    EXPECT_EQ(readFile(target), m_original);
    expectSavedTo(elsewhere());
    EXPECT_EQ(::umount(place.constData()), 0);
}

TEST_F(SavingSafetyTest, SavesToAnotherFileSystem)
{
    const QString memory = QStringLiteral("/dev/shm");
    struct stat status = {};
    if (::stat(QFile::encodeName(memory).constData(), &status) != 0 ||
        status.st_dev == statusOf(m_path).st_dev)
        GTEST_SKIP() << "there is no other file system at " << memory.toStdString();
    const QTemporaryDir folder(memory + QStringLiteral("/saving-XXXXXX"));
    ASSERT_TRUE(folder.isValid());
    expectSavedTo(folder.filePath(QStringLiteral("contract.pdf")));
    EXPECT_EQ(
        QDir(folder.path()).entryList(QDir::Files | QDir::Hidden),
        QStringList(QStringLiteral("contract.pdf")));
}

TEST_F(SavingSafetyTest, DoesNotOverwriteWhatAnotherProgramHasSaved)
{
    // As most programs save: a new file takes the old one's place.
    ASSERT_TRUE(QFile::remove(m_path));
    PDFWriter writer;
    writer.addPage(showText(72, 700, "Somebody else's version"));
    m_folder.write(QStringLiteral("contract.pdf"), writer.bytes());

    expectFailure(m_path, Code::changedMeanwhile, "another program has changed the file since it was opened");
    EXPECT_EQ(readFile(m_path), writer.bytes());
    expectSavedTo(elsewhere());
    // Unless the user wants it.
    expectSavedTo(m_path);
}

TEST_F(SavingSafetyTest, SavesWhatWasOpenedAfterAnotherProgramHasWrittenIntoTheFile)
{
    {
        QFile file(m_path);
        ASSERT_TRUE(file.open(QFile::ReadWrite));
        ASSERT_TRUE(file.resize(m_original.size() / 2));
        ASSERT_TRUE(file.seek(0));
        ASSERT_EQ(file.write(QByteArray(100, '!')), 100);
    }
    expectFailure(m_path, Code::changedMeanwhile, "another program has changed the file since it was opened");
    expectSavedTo(elsewhere());
}

TEST_F(SavingSafetyTest, SavesAFileThatWasRemovedMeanwhile)
{
    ASSERT_TRUE(QFile::remove(m_path));
    ASSERT_TRUE(m_document->write(m_path));
    expectSavedTo(m_path);
}

TEST_F(SavingSafetyTest, LeavesTheOldFileWhenItIsCancelled)
{
    Cancellation cancellation;
    cancellation.cancel();
    const auto written = m_document->write(m_path, Overwrite::unlessChanged, cancellation);
    ASSERT_FALSE(written);
    EXPECT_EQ(written.error().code, Code::cancelled);
    EXPECT_EQ(readFile(m_path), m_original);
    expectSavedTo(m_path);
}

TEST_F(SavingSafetyTest, SavesUnderTheLongestNameThatThereIs)
{
    expectSavedTo(m_folder.path(QString(251, QLatin1Char('n')) + QStringLiteral(".pdf")));
}

} // namespace
} // namespace pdf
