// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <QByteArray>

#include <optional>

namespace quillo {

/// A raw DEFLATE stream (RFC 1951) of the data, with neither a zlib nor a gzip header. None when there is not
/// enough memory.
std::optional<QByteArray> deflated(const QByteArray& data);

} // namespace quillo
