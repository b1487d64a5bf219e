// SPDX-License-Identifier: AGPL-3.0-or-later
#include "document/PageText.h"

#include "insight/Identity.h"

#include <utility>

namespace quillo {

PageText::PageText(
    std::int64_t pageNumberValue, QString textValue, bool isOCRValue,
    std::optional<std::vector<TextBoundingBox>> boxes)
    : id(freshIdentity())
    , pageNumber(pageNumberValue)
    , text(std::move(textValue))
    , isOCR(isOCRValue)
    , boundingBoxes(std::move(boxes))
{}

} // namespace quillo
