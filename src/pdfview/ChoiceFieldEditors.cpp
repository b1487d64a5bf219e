// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdfview/ChoiceFieldEditors.h"

#include "pdfview/LineFieldEditor.h"

#include <QComboBox>
#include <QEvent>
#include <QLineEdit>
#include <QListWidget>

#include <utility>

namespace pdf {
namespace {

// Of a list whose size fits itself to nothing: what the page shows of it.
constexpr double listSize = 12.0;

} // namespace

ComboFieldEditor::ComboFieldEditor(const PDFFormField& field, QWidget* parent)
    : FieldEditor(field, new QComboBox(parent))
{
    dress();
    box()->setFrame(false);
    box()->setEditable(field.isEditable);
    box()->setInsertPolicy(QComboBox::NoInsert);
    for (const FormFieldOption& option : field.options)
        box()->addItem(option.displayText);
    if (QLineEdit* edit = box()->lineEdit()) {
        // Otherwise the text would be completed to an option against the user's will.
        box()->setCompleter(nullptr);
        edit->setMaxLength(field.maximumLength > 0 ? field.maximumLength : unlimitedLength);
        watch(edit);
    }
    showField();
    connect(box(), &QComboBox::activated, this, &FieldEditor::committed);
}

FormValue ComboFieldEditor::value() const
{
    if (field().isEditable)
        return box()->currentText();
    std::vector<int> selection;
    if (box()->currentIndex() >= 0)
        selection.push_back(box()->currentIndex());
    return selection;
}

void ComboFieldEditor::enter()
{
    if (QLineEdit* edit = box()->lineEdit())
        edit->selectAll();
}

void ComboFieldEditor::enterAt(QPoint place, Qt::KeyboardModifiers)
{
    // The text of an editable box is for clicking into, and only its arrow opens the list.
    QLineEdit* edit = box()->lineEdit();
    if (edit && edit->geometry().contains(place))
        edit->setCursorPosition(edit->cursorPositionAt(edit->mapFrom(box(), place)));
    else
        box()->showPopup();
}

void ComboFieldEditor::scaleTo(double)
{
    QFont font = box()->font();
    font.setPixelSize(fontPixels(box()->currentText()));
    box()->setFont(font);
}

void ComboFieldEditor::showField()
{
    box()->setCurrentIndex(field().selection.empty() ? -1 : field().selection.front());
    if (field().isEditable)
        box()->setEditText(field().text);
}

bool ComboFieldEditor::eventFilter(QObject* watched, QEvent* event)
{
    // The wheel scrolls the page, as over every other field, and changes no value by accident.
    if (event->type() == QEvent::Wheel) {
        event->ignore();
        return true;
    }
    return FieldEditor::eventFilter(watched, event);
}

QComboBox* ComboFieldEditor::box() const
{
    return static_cast<QComboBox*>(widget());
}

ListFieldEditor::ListFieldEditor(const PDFFormField& field, QWidget* parent)
    : FieldEditor(field, new QListWidget(parent))
{
    dress();
    list()->setFrameShape(QFrame::NoFrame);
    list()->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    list()->setSelectionMode(
        field.isMultipleChoice ? QAbstractItemView::ExtendedSelection : QAbstractItemView::SingleSelection);
    for (const FormFieldOption& option : field.options)
        list()->addItem(option.displayText);
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
    QFont font = list()->font();
    const double points = field().fontSize > 0.0 ? field().fontSize : listSize;
    font.setPixelSize(std::max(1, static_cast<int>(points * scale)));
    list()->setFont(font);
}

void ListFieldEditor::showField()
{
    for (int row = 0; row < list()->count(); ++row) {
        const auto& selection = field().selection;
        const bool isSelected = std::binary_search(selection.begin(), selection.end(), row);
        list()->item(row)->setSelected(isSelected);
    }
    if (!field().selection.empty())
        list()->scrollToItem(list()->item(field().selection.front()));
}

QListWidget* ListFieldEditor::list() const
{
    return static_cast<QListWidget*>(widget());
}

} // namespace pdf
