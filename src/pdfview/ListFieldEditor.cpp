// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdfview/ListFieldEditor.h"

#include "pdf/FieldLayout.h"
#include "pdfview/OptionList.h"

#include <QScrollBar>

#include <algorithm>

namespace pdf {

ListFieldEditor::ListFieldEditor(const PDFFormField& field, QWidget* parent)
    : FieldEditor(field, new OptionList(parent))
{
    dress();
    list()->setSelectionMode(
        field.isMultipleChoice ? QAbstractItemView::ExtendedSelection : QAbstractItemView::SingleSelection);
    for (const FormFieldOption& option : field.options)
        list()->addItem(option.displayText);
    list()->layOut(field, QRectF(QPointF(), field.bounds.size()), 1.0);
    showField();
}

FormValue ListFieldEditor::value() const
{
    std::vector<int> selection;
    for (int row = 0; row < list()->count(); ++row) {
        if (list()->item(row)->isSelected())
            selection.push_back(row);
    }
    return selection;
}

void ListFieldEditor::enter()
{
    if (!list()->currentItem() && list()->count() > 0)
        list()->setCurrentRow(0, QItemSelectionModel::NoUpdate);
}

void ListFieldEditor::enterAt(QPoint place, Qt::KeyboardModifiers modifiers)
{
    const QModelIndex index = list()->indexAt(list()->viewport()->mapFrom(list(), place));
    if (!index.isValid())
        return;
    const bool isAdded = field().isMultipleChoice && modifiers & Qt::ControlModifier;
    list()->selectionModel()->setCurrentIndex(
        index, isAdded ? QItemSelectionModel::Toggle : QItemSelectionModel::ClearAndSelect);
}

void ListFieldEditor::scaleTo(double scale)
{
    const bool isFirstPlace = !m_isPlaced;
    const int top = list()->verticalScrollBar()->value();
    list()->layOut(field(), rect(), scale);
    m_isPlaced = true;
    if (isFirstPlace)
        showTop();
    else
        list()->verticalScrollBar()->setValue(top);
}

void ListFieldEditor::showField()
{
    for (int row = 0; row < list()->count(); ++row) {
        const auto& selection = field().selection;
        const bool isSelected = std::binary_search(selection.begin(), selection.end(), row);
        list()->item(row)->setSelected(isSelected);
    }
    showTop();
}

OptionList* ListFieldEditor::list() const
{
    return static_cast<OptionList*>(widget());
}

void ListFieldEditor::showTop()
{
    const QSizeF size = field().bounds.size();
    const bool isLying = field().rotation % 180 != 0;
    const int top = topOption(field(), isLying ? size.transposed() : size, borderInset(field()));
    if (QListWidgetItem* item = list()->item(top))
        list()->scrollToItem(item, QAbstractItemView::PositionAtTop);
}

} // namespace pdf
