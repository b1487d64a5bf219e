// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <QRectF>
#include <QString>
#include <QUuid>

#include <cstdint>
#include <optional>
#include <vector>

namespace quillo {

/// One word (or recognised run) of a page with its box.
struct TextBoundingBox
{
    /// The word as it stands in the page text.
    QString text;
    /// Page points, origin at the page's lower left.
    QRectF rect;
};

/// The text of one page. The identity is fresh with every construction and means nothing beyond it.
struct PageText
{
    PageText(
        std::int64_t pageNumber, QString text, bool isOCR,
        std::optional<std::vector<TextBoundingBox>> boundingBoxes);

    QUuid id;
    /// Zero-based; texts shown to the user add 1.
    std::int64_t pageNumber;
    /// Empty when the page has no text.
    QString text;
    /// True when the text was recognised from a picture of the page.
    bool isOCR;
    /// Absent for a page without text and for every recognised page; an empty array says that there was text
    /// and no box could be found for any of it.
    std::optional<std::vector<TextBoundingBox>> boundingBoxes;
};

using PageTexts = std::vector<PageText>;

} // namespace quillo
