// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "pdfview/FieldEditor.h"

namespace pdf {

class CombLineEdit;

/// Edits a text field in which each character has a cell of its own.
class CombFieldEditor final : public FieldEditor
{
    Q_OBJECT

public:
    CombFieldEditor(const PDFFormField& field, QWidget* parent);

    FormValue value() const override;
    void enter() override;
    void enterAt(QPoint place, Qt::KeyboardModifiers modifiers) override;

protected:
    void scaleTo(double scale) override;
    void showField() override;

private:
    CombLineEdit* edit() const;
};

} // namespace pdf
