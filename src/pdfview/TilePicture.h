// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "pdf/Cancellation.h"
#include "pdf/PDFDisplayList.h"
#include "pdfview/Tile.h"

#include <QImage>

#include <optional>

namespace pdf {

struct PageContent;

/// What was drawn of a tile.
struct TilePicture
{
    /// Without annotations; null where it is not kept.
    QImage content;
    /// With these annotations.
    QImage whole;
    std::optional<PDFDisplayList> annotations;

    qsizetype byteCount() const { return content.sizeInBytes() + whole.sizeInBytes(); }
};

/// Brings the tile's picture up to date: its content where there is none yet, its annotations where they
/// differ. False when that took too long, cost too much or was cancelled.
bool drawTile(
    const PageContent& page, const Tile& tile, TilePicture& picture, const Cancellation& cancellation);

} // namespace pdf
