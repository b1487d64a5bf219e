// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <QByteArray>

namespace quillo {

/// What a raw DEFLATE stream holds; null when the bytes are anything else or more.
QByteArray inflated(const QByteArray& stream);

} // namespace quillo
