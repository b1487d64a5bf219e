// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "pdf/PDFError.h"

#include <QByteArray>
#include <QString>

#include <span>
#include <utility>

namespace quillo::cli {

/// A file, a device or a pipe that is read from where it stands to its end. A pipe gives its bytes whenever
/// the program at its other end has some; only the end of file is taken for the end. The messages of errors
/// fit behind the file's name.
class InputFile
{
public:
    /// The path as pdf/FileName.h keeps it; "-" is standard input.
    static pdf::Result<InputFile> open(const QString& path);

    ~InputFile();
    InputFile(InputFile&& other) noexcept
        : m_descriptor(std::exchange(other.m_descriptor, -1))
    {}
    InputFile(const InputFile&) = delete;
    InputFile& operator=(const InputFile&) = delete;

    /// Waits for bytes and gives how many there were; 0 at the end.
    pdf::Result<qint64> read(std::span<char> buffer);

    /// Everything up to the end, or an error: never a part. Fails where that is more than the maximum; `what`
    /// says of what that would be too much.
    pdf::Result<QByteArray> readAll(qint64 maximumBytes, const QString& what);

private:
    explicit InputFile(int descriptor)
        : m_descriptor(descriptor)
    {}

    int m_descriptor;
};

/// The error of an input that is larger than is read.
pdf::PDFError tooLarge(qint64 maximumBytes, const QString& what);

/// The error that errno tells of.
pdf::PDFError systemError();

} // namespace quillo::cli
