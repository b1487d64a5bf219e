// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "pdfview/FieldEditor.h"

class QLineEdit;

namespace pdf {

/// Edits a text field of one line, and passwords.
class LineFieldEditor final : public FieldEditor
{
    Q_OBJECT

public:
    LineFieldEditor(const PDFFormField& field, QWidget* parent);

    FormValue value() const override;
    void enter() override;
    void enterAt(QPoint place, Qt::KeyboardModifiers modifiers) override;

protected:
    void scaleTo(double scale) override;
    void showField() override;

private:
    QLineEdit* edit() const;
    void fitFont();
};

/// How a field wants its text to stand.
Qt::Alignment alignmentOf(const PDFFormField& field);

} // namespace pdf
