// SPDX-License-Identifier: AGPL-3.0-or-later
#include "analytics/Inflate.h"

#include <array>
#include <zlib.h>

namespace quillo {

QByteArray inflated(const QByteArray& stream)
{
    z_stream state = {};
    if (inflateInit2(&state, -15) != Z_OK)
        return {};
    QByteArray input = stream;
    QByteArray result;
    std::array<char, 4096> block{};
    state.next_in = reinterpret_cast<Bytef*>(input.data());
    state.avail_in = static_cast<uInt>(input.size());
    int status = Z_OK;
    while (status == Z_OK) {
        state.next_out = reinterpret_cast<Bytef*>(block.data());
        state.avail_out = static_cast<uInt>(block.size());
        status = inflate(&state, Z_NO_FLUSH);
        result.append(block.data(), static_cast<qsizetype>(block.size() - state.avail_out));
    }
    const bool whole = status == Z_STREAM_END && state.avail_in == 0;
    inflateEnd(&state);
    return whole ? result : QByteArray();
}

} // namespace quillo
