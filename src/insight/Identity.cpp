// SPDX-License-Identifier: AGPL-3.0-or-later
#include "insight/Identity.h"

#include <QByteArrayView>
#include <QRandomGenerator>

#include <array>
#include <bit>

namespace quillo {

QUuid freshIdentity()
{
    std::array<quint32, 4> words;
    QRandomGenerator::global()->fillRange(words.data(), words.size());
    auto bytes = std::bit_cast<std::array<char, 16>>(words);
    // Version 4, variant 1, as RFC 4122 places them.
    bytes[6] = static_cast<char>((bytes[6] & 0x0F) | 0x40);
    bytes[8] = static_cast<char>((bytes[8] & 0x3F) | 0x80);
    return QUuid::fromRfc4122(QByteArrayView(bytes.data(), bytes.size()));
}

} // namespace quillo
