// SPDX-License-Identifier: AGPL-3.0-or-later
#include "analytics/Deflate.h"

#include <zlib.h>

namespace quillo {
namespace {

// Negative: no header and no checksum around the stream.
constexpr int rawWindowBits = -15;
constexpr int usualMemoryLevel = 8;

} // namespace

std::optional<QByteArray> deflated(const QByteArray& data)
{
    z_stream stream = {};
    if (deflateInit2(
            &stream, Z_DEFAULT_COMPRESSION, Z_DEFLATED, rawWindowBits, usualMemoryLevel,
            Z_DEFAULT_STRATEGY) != Z_OK)
        return std::nullopt;
    QByteArray input = data;
    QByteArray result(static_cast<qsizetype>(deflateBound(&stream, static_cast<uLong>(data.size()))), '\0');
    stream.next_in = reinterpret_cast<Bytef*>(input.data());
    stream.avail_in = static_cast<uInt>(input.size());
    stream.next_out = reinterpret_cast<Bytef*>(result.data());
    stream.avail_out = static_cast<uInt>(result.size());
    const bool done = deflate(&stream, Z_FINISH) == Z_STREAM_END;
    result.truncate(static_cast<qsizetype>(stream.total_out));
    deflateEnd(&stream);
    return done ? std::optional(result) : std::nullopt;
}

} // namespace quillo
