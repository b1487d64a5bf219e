// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/TabOrder.h"

#include <algorithm>
#include <numeric>

namespace pdf {
namespace {

/// Rows of boxes; for columns the caller swaps the axes.
std::vector<std::size_t> inRows(std::span<const QRectF> boxes)
{
    std::vector<std::size_t> order(boxes.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
        return boxes[a].top() < boxes[b].top();
    });
    for (auto row = order.begin(); row != order.end();) {
        const double bottom = boxes[*row].bottom();
        // At least the first one, whatever its size is.
        const auto end =
            std::find_if(row + 1, order.end(), [&](std::size_t i) { return boxes[i].center().y() > bottom; });
        std::stable_sort(
            row, end, [&](std::size_t a, std::size_t b) { return boxes[a].left() < boxes[b].left(); });
        row = end;
    }
    return order;
}

} // namespace

std::vector<std::size_t> tabOrder(std::span<const QRectF> boxes, TabOrder order, bool rightToLeft)
{
    std::vector<QRectF> turned;
    turned.reserve(boxes.size());
    for (const QRectF& box : boxes) {
        const double left = rightToLeft ? -box.right() : box.left();
        turned.emplace_back(left, box.top(), box.width(), box.height());
        if (order == TabOrder::columns)
            turned.back() = QRectF(box.top(), left, box.height(), box.width());
    }
    if (order != TabOrder::listed)
        return inRows(turned);
    std::vector<std::size_t> listed(boxes.size());
    std::iota(listed.begin(), listed.end(), std::size_t{0});
    return listed;
}

} // namespace pdf
