// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdfview/OptionList.h"

#include "pdf/FieldLayout.h"
#include "pdfview/LineFieldEditor.h"

#include <QPainter>
#include <QScrollBar>
#include <QStyledItemDelegate>

#include <algorithm>
#include <cmath>

namespace pdf {
namespace {

int rounded(double length)
{
    return static_cast<int>(std::lround(length));
}

class OptionDelegate : public QStyledItemDelegate
{
public:
    explicit OptionDelegate(OptionList* list)
        : QStyledItemDelegate(list)
        , m_list(list)
    {}

    QSize sizeHint(const QStyleOptionViewItem&, const QModelIndex& index) const override
    {
        return {0, m_list->rowHeight(index.row())};
    }

    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override
    {
        const QRect row = option.rect;
        if (option.state & QStyle::State_Selected)
            painter->fillRect(
                row, QColor::fromRgbF(
                         float(selectedOptionRed), float(selectedOptionGreen), float(selectedOptionBlue)));
        const QString text = index.data(Qt::DisplayRole).toString();
        const int room = row.width() - 2 * m_list->margin() - option.fontMetrics.horizontalAdvance(text);
        int x = row.left() + m_list->margin();
        if (room > 0 && m_list->textAlignment() & Qt::AlignHCenter)
            x += room / 2;
        else if (room > 0 && m_list->textAlignment() & Qt::AlignRight)
            x += room;
        painter->setFont(option.font);
        painter->setPen(option.palette.color(QPalette::Text));
        painter->drawText(x, row.top() + m_list->baseline(), text);
        // Where several options may be selected, the one that the keyboard is on is not told by its colour.
        const bool isMultiple = m_list->selectionMode() != QAbstractItemView::SingleSelection;
        if (isMultiple && option.state & QStyle::State_HasFocus) {
            painter->setPen(QPen(option.palette.color(QPalette::Text), 1, Qt::DotLine));
            painter->drawRect(row.adjusted(0, 0, -1, -1));
        }
    }

private:
    OptionList* m_list;
};

} // namespace

OptionList::OptionList(QWidget* parent)
    : QListWidget(parent)
{
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollMode(QAbstractItemView::ScrollPerItem);
    setItemDelegate(new OptionDelegate(this));
}

void OptionList::layOut(const PDFFormField& field, const QRectF& rect, double scale)
{
    const double inset = borderInset(field);
    const FormFieldRows rows = optionRows(field, inset);
    const double lastBaseline = rows.top + (count() - 1) * rows.height + rows.baseline;
    // What may hang below the last row is no reason to scroll.
    const bool fits = lastBaseline <= rect.height() / scale - inset;

    const QRect covered = rect.toAlignedRect();
    const double offset = rect.top() - covered.top();
    const int top = rounded(offset + rows.top * scale);
    const int bottom = std::max(top + 1, rounded(offset + rect.height() - inset * scale));
    m_heights.clear();
    int end = top;
    for (int row = 0; row < count(); ++row) {
        const int start = end;
        end = rounded(offset + (rows.top + (row + 1) * rows.height) * scale);
        m_heights.push_back(std::max(1, (fits ? std::min(end, bottom) : end) - start));
    }
    const int edge = rounded(inset * scale);
    m_margin = std::max(0, rounded(rows.left.value_or(2.0 * inset) * scale) - edge);
    m_baseline = rounded(rows.baseline * scale);
    m_alignment = alignmentOf(field);
    QFont textFont = font();
    textFont.setPixelSize(std::max(1, rounded(rows.fontSize * scale)));
    setFont(textFont);

    const int barWidth = fits ? 0 : verticalScrollBar()->sizeHint().width();
    const bool hasRoom = covered.left() + covered.width() + barWidth <= parentWidget()->width();
    setVerticalScrollBarPolicy(fits ? Qt::ScrollBarAlwaysOff : Qt::ScrollBarAlwaysOn);
    setViewportMargins(edge, top, edge, covered.height() - bottom);
    setGeometry(covered.adjusted(0, 0, hasRoom ? barWidth : 0, 0));
    doItemsLayout();
}

} // namespace pdf
