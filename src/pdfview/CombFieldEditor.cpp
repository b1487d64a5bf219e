// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdfview/CombFieldEditor.h"

#include "pdfview/CombLineEdit.h"
#include "pdfview/LineFieldEditor.h"

namespace pdf {

CombFieldEditor::CombFieldEditor(const PDFFormField& field, QWidget* parent)
    : FieldEditor(field, new CombLineEdit(field.maximumLength, parent))
{
    dress();
    edit()->setAlignment(alignmentOf(field));
    edit()->setText(field.text);
}

FormValue CombFieldEditor::value() const
{
    return edit()->text();
}

void CombFieldEditor::enter()
{
    edit()->selectAll();
}

void CombFieldEditor::enterAt(QPoint place, Qt::KeyboardModifiers)
{
    edit()->setCursorPosition(edit()->positionAt(place.x()));
}

void CombFieldEditor::scaleTo(double)
{
    QFont font = edit()->font();
    font.setPixelSize(fontPixels(edit()->text()));
    edit()->setFont(font);
}

void CombFieldEditor::showField()
{
    edit()->setText(field().text);
}

CombLineEdit* CombFieldEditor::edit() const
{
    return static_cast<CombLineEdit*>(widget());
}

} // namespace pdf
