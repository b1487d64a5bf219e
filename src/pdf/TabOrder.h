// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <QRectF>

#include <cstddef>
#include <span>
#include <vector>

namespace pdf {

/// The order in which the Tab key walks the widgets of a page (ISO 32000-1, 12.5): in rows, in columns, or as
/// the page lists them.
enum class TabOrder { rows, columns, listed };

/// The indices of the boxes in the order asked for. The boxes are in display space. Boxes stand in one row
/// when the middle of one lies between the upper and lower edge of the row's first; columns likewise.
/// `rightToLeft` turns the direction within rows, and that of columns.
std::vector<std::size_t> tabOrder(std::span<const QRectF> boxes, TabOrder order, bool rightToLeft);

} // namespace pdf
