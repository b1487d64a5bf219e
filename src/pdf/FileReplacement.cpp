// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/FileReplacement.h"

#include "pdf/FileName.h"

#include <QRandomGenerator>

#include <dirent.h>
#include <fcntl.h>
#include <fnmatch.h>
#include <limits.h>
#include <sys/file.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <memory>

namespace pdf {
namespace {

// The name does not contain the target's, which may be as long as a name can be.
constexpr auto temporaryName = QLatin1String(".pdf-save-%1");
constexpr const char* temporaryPattern = ".pdf-save-????????????????";

constexpr int longestLinkChain = 40;

PDFError unwritable(const QString& message)
{
    return {PDFError::Code::unwritable, message};
}

PDFError describe(int error)
{
    switch (error) {
    case ENOSPC:
    case EDQUOT:
    case EFBIG:
        return unwritable(QStringLiteral("there is not enough space for the file"));
    case EACCES:
    case EPERM:
    case EROFS:
        return unwritable(QStringLiteral("the folder of the file cannot be written"));
    case ENOENT:
    case ENOTDIR:
        return unwritable(QStringLiteral("the folder of the file does not exist"));
    default:
        return unwritable(QString::fromLocal8Bit(std::strerror(error)));
    }
}

/// The folder of a path from the root.
QString folderOf(const QString& path)
{
    return path.left(std::max<qsizetype>(path.lastIndexOf(QLatin1Char('/')), 1));
}

QString joined(const QString& folder, const QString& name)
{
    return folder.endsWith(QLatin1Char('/')) ? folder + name : folder + QLatin1Char('/') + name;
}

/// What a symbolic link says; absent where the path is none.
std::optional<QString> linkTarget(const QString& path)
{
    QByteArray target(PATH_MAX, Qt::Uninitialized);
    const ssize_t size =
        ::readlink(bytesOfFileName(path).constData(), target.data(), static_cast<std::size_t>(target.size()));
    return size < 0 ? std::nullopt : std::optional(fileNameFromBytes(QByteArrayView(target).first(size)));
}

/// The folder's path without links in it, or as it is where there is no such folder.
QString withoutLinks(const QString& folder)
{
    struct Free
    {
        void operator()(char* memory) const { std::free(memory); }
    };
    const std::unique_ptr<char, Free> path(::realpath(bytesOfFileName(folder).constData(), nullptr));
    return path ? fileNameFromBytes(path.get()) : folder;
}

/// Flushes the folder's entries, so that the renaming survives a power failure.
int syncFolder(const QString& folder)
{
    const int descriptor = ::open(bytesOfFileName(folder).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0)
        return errno;
    const int error = ::fsync(descriptor) == 0 ? 0 : errno;
    ::close(descriptor);
    // Some file systems cannot flush a folder, and do not need it.
    return error == EINVAL || error == ENOTSUP ? 0 : error;
}

/// Removes the files of processes that were killed while they were writing. A file that is being written is
/// locked.
void removeAbandoned(const QString& folder)
{
    struct Close
    {
        void operator()(DIR* entries) const { ::closedir(entries); }
    };
    const std::unique_ptr<DIR, Close> entries(::opendir(bytesOfFileName(folder).constData()));
    if (!entries)
        return;
    const int place = ::dirfd(entries.get());
    while (const dirent* entry = ::readdir(entries.get())) {
        if (::fnmatch(temporaryPattern, entry->d_name, 0) != 0)
            continue;
        const int descriptor = ::openat(place, entry->d_name, O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
        if (descriptor < 0)
            continue;
        struct stat status = {};
        if (::fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode) && status.st_uid == ::geteuid() &&
            ::flock(descriptor, LOCK_EX | LOCK_NB) == 0)
            ::unlinkat(place, entry->d_name, 0);
        ::close(descriptor);
    }
}

} // namespace

QString FileReplacement::resolved(const QString& path)
{
    QString place = absoluteFilePath(path);
    for (int i = 0; i < longestLinkChain; ++i) {
        const QString folder = folderOf(place);
        const auto target = linkTarget(place);
        if (!target)
            return joined(withoutLinks(folder), place.section(QLatin1Char('/'), -1));
        place = target->startsWith(QLatin1Char('/')) ? *target : joined(folder, *target);
    }
    return {};
}

Result<std::unique_ptr<FileReplacement>> FileReplacement::begin(const QString& target)
{
    const QByteArray path = bytesOfFileName(target);
    std::optional<struct stat> replaced;
    struct stat status = {};
    if (::stat(path.constData(), &status) == 0) {
        if (!S_ISREG(status.st_mode))
            return unwritable(QStringLiteral("this is not a regular file"));
        constexpr mode_t anybodyMayWrite = S_IWUSR | S_IWGRP | S_IWOTH;
        if ((status.st_mode & anybodyMayWrite) == 0 ||
            ::faccessat(AT_FDCWD, path.constData(), W_OK, AT_EACCESS) != 0)
            return unwritable(QStringLiteral("the file is read-only"));
        replaced = status;
    } else if (errno != ENOENT) {
        return describe(errno);
    }
    std::unique_ptr<FileReplacement> replacement(new FileReplacement(target, replaced));
    removeAbandoned(replacement->m_folder);
    if (!replacement->create())
        return describe(errno);
    return replacement;
}

FileReplacement::FileReplacement(const QString& target, const std::optional<struct stat>& replaced)
    : m_target(target)
    , m_folder(folderOf(target))
    , m_replaced(replaced)
{}

FileReplacement::~FileReplacement()
{
    if (!m_temporary.isEmpty())
        ::unlink(m_temporary.constData());
    if (m_descriptor >= 0)
        ::close(m_descriptor);
}

bool FileReplacement::create()
{
    // A file that replaces another gets its permissions at the end and is private until then.
    const mode_t mode =
        m_replaced ? S_IRUSR | S_IWUSR : S_IRUSR | S_IWUSR | S_IRGRP | S_IWGRP | S_IROTH | S_IWOTH;
    for (;;) {
        const QString number =
            QStringLiteral("%1").arg(QRandomGenerator::system()->generate64(), 16, 16, QLatin1Char('0'));
        const QByteArray path = bytesOfFileName(joined(m_folder, QString(temporaryName).arg(number)));
        const int descriptor = ::open(path.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode);
        if (descriptor < 0 && errno == EEXIST)
            continue;
        if (descriptor < 0)
            return false;
        struct stat status = {};
        const bool isTaken = ::flock(descriptor, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK;
        if (isTaken || ::fstat(descriptor, &status) != 0 || status.st_nlink == 0) {
            // Another process took it for abandoned before it was locked.
            ::close(descriptor);
            continue;
        }
        m_descriptor = descriptor;
        m_temporary = path;
        return true;
    }
}

bool FileReplacement::write(const char* data, std::size_t size)
{
    while (size > 0 && m_error == 0) {
        const ssize_t count = ::write(m_descriptor, data, size);
        if (count >= 0) {
            data += count;
            size -= static_cast<std::size_t>(count);
            m_position += count;
        } else if (errno != EINTR) {
            m_error = errno;
        }
    }
    return m_error == 0;
}

void FileReplacement::restart()
{
    if (::ftruncate(m_descriptor, 0) != 0 || ::lseek(m_descriptor, 0, SEEK_SET) != 0)
        m_error = errno;
    m_position = 0;
}

bool FileReplacement::takeOverAttributes()
{
    if (!m_replaced)
        return true;
    mode_t mode = m_replaced->st_mode & 07777;
    if (::fchown(m_descriptor, m_replaced->st_uid, m_replaced->st_gid) != 0 &&
        ::fchown(m_descriptor, static_cast<uid_t>(-1), m_replaced->st_gid) != 0) {
        // What the old group was allowed is no business of another group.
        const mode_t everybody = mode & S_IRWXO;
        mode = (mode & ~mode_t{S_IRWXG | S_ISUID | S_ISGID}) | (everybody << 3);
    }
    return ::fchmod(m_descriptor, mode) == 0;
}

std::optional<PDFError> FileReplacement::error() const
{
    return m_error == 0 ? std::nullopt : std::optional(describe(m_error));
}

std::optional<PDFError> FileReplacement::commit(const std::optional<FileIdentity>& expected)
{
    if (m_error == 0 && (!takeOverAttributes() || ::fsync(m_descriptor) != 0))
        m_error = errno;
    if (m_error != 0)
        return error();

    const auto current = FileIdentity::of(m_target);
    if (expected && current && *current != *expected)
        return changedMeanwhile();
    if (::rename(m_temporary.constData(), bytesOfFileName(m_target).constData()) != 0)
        return describe(errno);
    m_temporary.clear();

    struct stat status = {};
    if (::fstat(m_descriptor, &status) != 0)
        return describe(errno);
    m_installed = FileIdentity::of(status);
    if (const int failure = syncFolder(m_folder); failure != 0)
        return describe(failure);
    return std::nullopt;
}

} // namespace pdf
