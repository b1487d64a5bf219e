// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdfview/LineFieldEditor.h"

#include <QLineEdit>

namespace pdf {
namespace {

// What a line edit leaves free beside its text by itself.
constexpr int ownMargin = 2;

} // namespace

Qt::Alignment alignmentOf(const PDFFormField& field)
{
    switch (field.alignment) {
    case FormFieldAlignment::centre:
        return Qt::AlignHCenter;
    case FormFieldAlignment::right:
        return Qt::AlignRight | Qt::AlignAbsolute;
    default:
        return Qt::AlignLeft | Qt::AlignAbsolute;
    }
}

LineFieldEditor::LineFieldEditor(const PDFFormField& field, QWidget* parent)
    : FieldEditor(field, new QLineEdit(parent))
{
    dress();
    edit()->setFrame(false);
    edit()->setAlignment(alignmentOf(field) | Qt::AlignVCenter);
    if (field.isPassword)
        edit()->setEchoMode(QLineEdit::Password);
    edit()->setMaxLength(field.maximumLength > 0 ? field.maximumLength : unlimitedLength);
    edit()->setText(field.text);
    connect(edit(), &QLineEdit::textChanged, this, &LineFieldEditor::fitFont);
}

FormValue LineFieldEditor::value() const
{
    return edit()->text();
}

void LineFieldEditor::enter()
{
    edit()->selectAll();
}

void LineFieldEditor::enterAt(QPoint place, Qt::KeyboardModifiers)
{
    edit()->setCursorPosition(edit()->cursorPositionAt(place));
}

void LineFieldEditor::scaleTo(double)
{
    const int side = std::max(0, padding() - ownMargin);
    edit()->setTextMargins(side, 0, side, 0);
    fitFont();
}

void LineFieldEditor::showField()
{
    edit()->setText(field().text);
}

QLineEdit* LineFieldEditor::edit() const
{
    return static_cast<QLineEdit*>(widget());
}

void LineFieldEditor::fitFont()
{
    QFont font = edit()->font();
    font.setPixelSize(fontPixels(edit()->text()));
    edit()->setFont(font);
}

} // namespace pdf
