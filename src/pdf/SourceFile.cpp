// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/SourceFile.h"

#include "pdf/FileName.h"
#include "pdf/Limits.h"

#include <QDir>
#include <QTemporaryFile>
#include <QThreadPool>

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>
#include <vector>

namespace pdf {
namespace {

/// Below this a copy takes no longer than a few milliseconds.
constexpr qint64 smallFile = qint64{4} << 20;

constexpr std::size_t chunkSize = std::size_t{1} << 20;

PDFError unreadable(const QString& message)
{
    return {PDFError::Code::unreadable, message};
}

/// Why a file cannot be opened, as errno tells.
PDFError openingError()
{
    if (errno == ENOENT || errno == ENOTDIR)
        return unreadable(QStringLiteral("the file does not exist"));
    return unreadable(
        QStringLiteral("the file cannot be read: ") + QString::fromLocal8Bit(std::strerror(errno)));
}

qint64 readAt(int descriptor, qint64 offset, char* buffer, qint64 length)
{
    for (;;) {
        const ssize_t count = ::pread(descriptor, buffer, static_cast<std::size_t>(length), offset);
        if (count >= 0 || errno != EINTR)
            return count;
    }
}

} // namespace

FileIdentity FileIdentity::of(const struct stat& status)
{
    return {status.st_dev, status.st_ino, status.st_size, status.st_mtim};
}

std::optional<FileIdentity> FileIdentity::of(const QString& path)
{
    struct stat status = {};
    if (::stat(bytesOfFileName(path).constData(), &status) != 0)
        return std::nullopt;
    return of(status);
}

bool FileIdentity::operator==(const FileIdentity& other) const
{
    return device == other.device && node == other.node && size == other.size &&
           modified.tv_sec == other.modified.tv_sec && modified.tv_nsec == other.modified.tv_nsec;
}

Result<std::shared_ptr<SourceFile>> SourceFile::open(const QString& path)
{
    const QByteArray name = bytesOfFileName(path);
    // To the system a name ends at its first zero byte, and what is before it may be another file.
    if (name.isEmpty() || name.contains('\0'))
        return unreadable(QStringLiteral("the file does not exist"));
    struct stat status = {};
    if (::stat(name.constData(), &status) != 0)
        return openingError();
    if (S_ISDIR(status.st_mode))
        return unreadable(QStringLiteral("this is a folder"));
    // Reading from a pipe or a device might never end, and opening one might wait for another program.
    if (!S_ISREG(status.st_mode))
        return unreadable(QStringLiteral("this is not a regular file"));
    const int descriptor = ::open(name.constData(), O_RDONLY | O_CLOEXEC);
    if (descriptor < 0)
        return openingError();
    auto file = std::make_unique<QFile>();
    if (!file->open(descriptor, QIODevice::ReadOnly | QIODevice::Unbuffered, QFileDevice::AutoCloseHandle) ||
        ::fstat(descriptor, &status) != 0)
        return openingError();
    if (status.st_size == 0)
        return PDFError{PDFError::Code::notPDF, QStringLiteral("the file is empty")};
    return std::shared_ptr<SourceFile>(new SourceFile(std::move(file), FileIdentity::of(status)));
}

SourceFile::SourceFile(std::unique_ptr<QFile> file, const FileIdentity& identity)
    : m_file(std::move(file))
    , m_identity(identity)
{}

SourceFile::~SourceFile()
{
    if (const int copy = m_copy; copy >= 0)
        ::close(copy);
}

qint64 SourceFile::read(qint64 offset, char* buffer, qint64 length) const
{
    const int copy = m_copy;
    // What somebody appends to the file is no part of it.
    const qint64 available = std::clamp(size() - offset, qint64{0}, length);
    return readAt(copy >= 0 ? copy : m_file->handle(), offset, buffer, available);
}

void SourceFile::preserve()
{
    std::call_once(m_preserving, [this] {
        if (size() <= smallFile)
            copy();
        else if (size() <= limits::preservedFile)
            QThreadPool::globalInstance()->start([self = shared_from_this()] { self->copy(); });
    });
}

void SourceFile::copy()
{
    const std::lock_guard lock(m_copying);
    // It has a name for a moment only, so it goes with the document, however that ends.
    QTemporaryFile file(QDir::temp().filePath(QStringLiteral("pdf-XXXXXX")));
    if (!file.open())
        return;
    ::unlink(QFile::encodeName(file.fileName()).constData());

    std::vector<char> chunk(chunkSize);
    for (qint64 offset = 0; offset < size();) {
        const qint64 count = readAt(m_file->handle(), offset, chunk.data(), qint64(chunk.size()));
        if (count <= 0 || file.write(chunk.data(), count) != count)
            return;
        offset += count;
    }
    if (file.flush() && file.size() == size() && isUntouched())
        m_copy = ::dup(file.handle());
}

bool SourceFile::isUntouched() const
{
    struct stat status = {};
    return ::fstat(m_file->handle(), &status) == 0 && FileIdentity::of(status) == m_identity;
}

bool SourceFile::isIntact() const
{
    if (isUntouched())
        return true;
    const std::lock_guard lock(m_copying);
    return m_copy >= 0;
}

} // namespace pdf
