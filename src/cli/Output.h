// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <QByteArrayView>
#include <QStringView>

#include <cstdio>

namespace quillo::cli {

/// Nothing more can be written, for the reason that `errorNumber` tells (as in errno).
struct OutputError
{
    int errorNumber = 0;
};

/// A stream that says when what was written did not arrive, by throwing OutputError.
class Output
{
public:
    /// The stream has to outlive the output.
    explicit Output(std::FILE* stream)
        : m_stream(stream)
    {}

    void write(QByteArrayView bytes);
    /// As UTF-8; an unpaired surrogate becomes U+FFFD.
    void write(QStringView text);
    void flush();

private:
    std::FILE* m_stream;
};

} // namespace quillo::cli
