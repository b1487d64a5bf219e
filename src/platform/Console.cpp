// SPDX-License-Identifier: AGPL-3.0-or-later
#include "platform/Console.h"

#include <cstdio>

namespace quillo {

void printLine(const QString& line)
{
    const QByteArray bytes = line.toUtf8() + '\n';
    std::fwrite(bytes.constData(), 1, static_cast<std::size_t>(bytes.size()), stdout);
    std::fflush(stdout);
}

} // namespace quillo
