// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

namespace quillo {

/// What texts are assembled from that come close to the extractor's patterns: their words, signs and digits,
/// characters that are equal to these but for their case, and what breaks a match.
const QStringList& extractionPieces();

} // namespace quillo
