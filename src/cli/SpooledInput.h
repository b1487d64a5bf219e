// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "cli/InputFile.h"
#include "pdf/PDFError.h"

#include <QString>

#include <utility>

namespace quillo::cli {

/// What came through a pipe, in a file without a name, because a document is not read from its start to its
/// end. The file goes with this object or with the process, however that ends.
class SpooledInput
{
public:
    /// Reads the input to its end. Fails rather than giving a part: where reading or writing fails, with the
    /// reason, and where there is more than the maximum.
    static pdf::Result<SpooledInput> read(InputFile& input, qint64 maximumBytes);

    ~SpooledInput();
    SpooledInput(SpooledInput&& other) noexcept
        : m_descriptor(std::exchange(other.m_descriptor, -1))
    {}
    SpooledInput(const SpooledInput&) = delete;
    SpooledInput& operator=(const SpooledInput&) = delete;

    /// A path by which this process can open the file as often as it likes.
    QString path() const;

    /// Whether the mark that ends a PDF stands where readers look for it, in the last kilobyte.
    bool hasEndMark() const;

private:
    explicit SpooledInput(int descriptor)
        : m_descriptor(descriptor)
    {}

    int m_descriptor;
};

} // namespace quillo::cli
