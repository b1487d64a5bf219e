// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "pdfview/FieldEditor.h"

class QPlainTextEdit;

namespace pdf {

/// Edits a text field of several lines.
class ParagraphFieldEditor final : public FieldEditor
{
    Q_OBJECT

public:
    ParagraphFieldEditor(const PDFFormField& field, QWidget* parent);

    FormValue value() const override;
    void enter() override;
    void enterAt(QPoint place, Qt::KeyboardModifiers modifiers) override;

protected:
    void scaleTo(double scale) override;
    void showField() override;
    bool takesReturn() const override { return true; }

private:
    QPlainTextEdit* edit() const;
    void fitFont();
    void cutToMaximum();
};

} // namespace pdf
