// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdfview/ParagraphFieldEditor.h"

#include "pdfview/LineFieldEditor.h"

#include <QPlainTextEdit>
#include <QTextBlock>

namespace pdf {

ParagraphFieldEditor::ParagraphFieldEditor(const PDFFormField& field, QWidget* parent)
    : FieldEditor(field, new QPlainTextEdit(parent))
{
    dress();
    edit()->setFrameShape(QFrame::NoFrame);
    edit()->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    edit()->setTabChangesFocus(true);
    QTextOption option = edit()->document()->defaultTextOption();
    option.setAlignment(alignmentOf(field));
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    edit()->document()->setDefaultTextOption(option);
    edit()->setPlainText(field.text);
    connect(edit(), &QPlainTextEdit::textChanged, this, &ParagraphFieldEditor::cutToMaximum);
    connect(edit(), &QPlainTextEdit::textChanged, this, &ParagraphFieldEditor::fitFont);
}

FormValue ParagraphFieldEditor::value() const
{
    return edit()->toPlainText();
}

void ParagraphFieldEditor::enter()
{
    edit()->selectAll();
}

void ParagraphFieldEditor::enterAt(QPoint place, Qt::KeyboardModifiers)
{
    edit()->setTextCursor(edit()->cursorForPosition(place));
}

void ParagraphFieldEditor::scaleTo(double)
{
    edit()->document()->setDocumentMargin(padding());
    fitFont();
}

void ParagraphFieldEditor::showField()
{
    edit()->setPlainText(field().text);
}

QPlainTextEdit* ParagraphFieldEditor::edit() const
{
    return static_cast<QPlainTextEdit*>(widget());
}

void ParagraphFieldEditor::fitFont()
{
    QFont font = edit()->font();
    const int pixels = fontPixels(edit()->toPlainText());
    if (font.pixelSize() == pixels)
        return;
    font.setPixelSize(pixels);
    edit()->setFont(font);
}

void ParagraphFieldEditor::cutToMaximum()
{
    const qsizetype excess = edit()->toPlainText().toUcs4().size() - field().maximumLength;
    if (field().maximumLength == 0 || excess <= 0)
        return;
    // What was entered last stands before the cursor.
    QTextCursor cursor = edit()->textCursor();
    for (qsizetype i = 0; i < excess; ++i)
        cursor.deletePreviousChar();
}

} // namespace pdf
