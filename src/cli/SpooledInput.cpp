// SPDX-License-Identifier: AGPL-3.0-or-later
#include "cli/SpooledInput.h"

#include "cli/SafeText.h"
#include "pdf/FileName.h"

#include <QCoreApplication>

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <vector>

namespace quillo::cli {
namespace {

constexpr std::size_t chunkSize = std::size_t{1} << 20;

QByteArray temporaryFolder()
{
    const QByteArray folder = qgetenv("TMPDIR");
    return folder.isEmpty() ? QByteArray("/tmp") : folder;
}

/// The error that errno tells of.
pdf::PDFError cannotSpool()
{
    return {
        pdf::PDFError::Code::unreadable,
        QCoreApplication::translate("quillo::cli", "no copy can be made in %1: %2")
            .arg(safeName(pdf::fileNameFromBytes(temporaryFolder())), systemError().message)};
}

bool write(int descriptor, QByteArrayView bytes)
{
    while (!bytes.isEmpty()) {
        const ssize_t count = ::write(descriptor, bytes.data(), static_cast<std::size_t>(bytes.size()));
        if (count < 0 && errno != EINTR)
            return false;
        bytes = bytes.sliced(std::max<ssize_t>(count, 0));
    }
    return true;
}

} // namespace

pdf::Result<SpooledInput> SpooledInput::read(InputFile& input, qint64 maximumBytes)
{
    QByteArray name = temporaryFolder() + "/quillo-XXXXXX";
    SpooledInput spooled(::mkostemp(name.data(), O_CLOEXEC));
    if (spooled.m_descriptor < 0)
        return cannotSpool();
    // Nobody else can open it from now on, and nobody has to remove it.
    ::unlink(name.constData());

    std::vector<char> chunk(chunkSize);
    for (qint64 size = 0;;) {
        const auto count = input.read(chunk);
        if (!count)
            return count.error();
        if (*count == 0)
            return spooled;
        size += *count;
        if (size > maximumBytes)
            return tooLarge(maximumBytes, QCoreApplication::translate("quillo::cli", "a document"));
        if (!write(spooled.m_descriptor, QByteArrayView(chunk.data(), *count)))
            return cannotSpool();
    }
}

SpooledInput::~SpooledInput()
{
    if (m_descriptor >= 0)
        ::close(m_descriptor);
}

QString SpooledInput::path() const
{
    return QStringLiteral("/dev/fd/%1").arg(m_descriptor);
}

bool SpooledInput::hasEndMark() const
{
    std::array<char, 1024> tail = {};
    const auto length = static_cast<off_t>(tail.size());
    const off_t size = ::lseek(m_descriptor, 0, SEEK_END);
    const ssize_t count = ::pread(m_descriptor, tail.data(), tail.size(), std::max<off_t>(size - length, 0));
    return count > 0 && QByteArrayView(tail.data(), count).contains("%%EOF");
}

} // namespace quillo::cli
