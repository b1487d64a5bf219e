// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "pdfview/PageViewport.h"
#include "pdfview/Tile.h"

#include <functional>
#include <vector>

namespace pdf {

enum class ScrollDirection { down, up };

/// The pictures that are still to be drawn for what the viewport shows and what it will show next, most
/// urgent first: small pictures of visible pages of which there is nothing at all, then the visible cells
/// from the middle of the view outwards, then the pages that come up in the direction of scrolling, then the
/// one behind. `isAtHand` tells which pictures need not be drawn (any more). What is not visible yet is left
/// out where all would take more than `room` (bytes): it would drive what is visible out of the cache.
std::vector<Tile> planTiles(
    const PageViewport& viewport, ScrollDirection direction, const std::function<bool(const Tile&)>& isAtHand,
    qsizetype room);

/// True when every visible cell is at hand.
bool isSharp(const PageViewport& viewport, const std::function<bool(const Tile&)>& isAtHand);

} // namespace pdf
