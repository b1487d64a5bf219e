// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "pdf/PDFFormField.h"

#include <QListWidget>
#include <QRectF>

#include <vector>

namespace pdf {

/// The options of a list box, drawn as the page draws them: rows of the same height in the same places, with
/// the same colour behind those that are selected.
class OptionList : public QListWidget
{
    Q_OBJECT

public:
    explicit OptionList(QWidget* parent);

    /// Lays out the rows for a field at this place. `rect` is in coordinates of the parent, `scale` in their
    /// units per page point. The list covers the field, and beside it has its scroll bar if it needs one and
    /// there is room; else the bar takes the field's edge.
    void layOut(const PDFFormField& field, const QRectF& rect, double scale);

    // Of the rows.
    int rowHeight(int row) const { return m_heights[static_cast<std::size_t>(row)]; }
    /// From the left and right edge of a row to its text.
    int margin() const { return m_margin; }
    /// From the top of a row to the line that its text stands on.
    int baseline() const { return m_baseline; }
    Qt::Alignment textAlignment() const { return m_alignment; }

private:
    std::vector<int> m_heights;
    int m_margin = 0;
    int m_baseline = 0;
    Qt::Alignment m_alignment = Qt::AlignLeft;
};

} // namespace pdf
