// SPDX-License-Identifier: AGPL-3.0-or-later
#include "cli/Output.h"

#include <cerrno>

namespace quillo::cli {

void Output::write(QByteArrayView bytes)
{
    const auto size = static_cast<std::size_t>(bytes.size());
    if (std::fwrite(bytes.data(), 1, size, m_stream) != size)
        throw OutputError{errno};
}

void Output::write(QStringView text)
{
    write(text.toUtf8());
}

void Output::flush()
{
    if (std::fflush(m_stream) != 0)
        throw OutputError{errno};
}

} // namespace quillo::cli
