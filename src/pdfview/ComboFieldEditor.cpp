// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdfview/ComboFieldEditor.h"

#include "pdfview/LineFieldEditor.h"

#include <QComboBox>
#include <QEvent>
#include <QLineEdit>

namespace pdf {

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

} // namespace pdf
