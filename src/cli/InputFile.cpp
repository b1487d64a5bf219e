// SPDX-License-Identifier: AGPL-3.0-or-later
#include "cli/InputFile.h"

#include "pdf/FileName.h"

#include <QCoreApplication>

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace quillo::cli {
namespace {

constexpr qint64 smallestRoom = 65536;

/// The size of a regular file; 0 for all else.
qint64 expectedSize(int descriptor)
{
    struct stat status = {};
    return ::fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode) ? status.st_size : 0;
}

} // namespace

pdf::PDFError tooLarge(qint64 maximumBytes, const QString& what)
{
    return {
        pdf::PDFError::Code::unreadable, QCoreApplication::translate("quillo::cli", "more than %1 MB of %2")
                                             .arg(maximumBytes >> 20)
                                             .arg(what)};
}

pdf::PDFError systemError()
{
    return {pdf::PDFError::Code::unreadable, QString::fromLocal8Bit(std::strerror(errno))};
}

pdf::Result<InputFile> InputFile::open(const QString& path)
{
    if (path == QLatin1String("-"))
        return InputFile(STDIN_FILENO);
    const int descriptor = ::open(pdf::bytesOfFileName(path).constData(), O_RDONLY | O_NOCTTY | O_CLOEXEC);
    if (descriptor < 0)
        return systemError();
    return InputFile(descriptor);
}

InputFile::~InputFile()
{
    if (m_descriptor > STDIN_FILENO)
        ::close(m_descriptor);
}

pdf::Result<qint64> InputFile::read(std::span<char> buffer)
{
    for (;;) {
        const ssize_t count = ::read(m_descriptor, buffer.data(), buffer.size());
        if (count >= 0)
            return qint64{count};
        if (errno == EAGAIN) {
            // Whoever shares the pipe has asked not to be kept waiting.
            pollfd waiting = {m_descriptor, POLLIN, 0};
            ::poll(&waiting, 1, -1);
        } else if (errno != EINTR) {
            return systemError();
        }
    }
}

pdf::Result<QByteArray> InputFile::readAll(qint64 maximumBytes, const QString& what)
{
    // One byte more than is expected, so that the end is found without growing.
    qint64 room = std::clamp(expectedSize(m_descriptor) + 1, smallestRoom, maximumBytes + 1);
    QByteArray bytes;
    qint64 size = 0;
    for (;;) {
        bytes.resize(room);
        const auto count = read(std::span(bytes.data() + size, static_cast<std::size_t>(room - size)));
        if (!count)
            return count.error();
        if (*count == 0)
            break;
        size += *count;
        if (size > maximumBytes)
            return tooLarge(maximumBytes, what);
        if (size == room)
            room = std::min(2 * room, maximumBytes + 1);
    }
    bytes.truncate(size);
    return bytes;
}

} // namespace quillo::cli
