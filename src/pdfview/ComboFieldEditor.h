// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "pdfview/FieldEditor.h"

class QComboBox;

namespace pdf {

/// Edits a combo box, with a text of one's own where the field takes it.
class ComboFieldEditor final : public FieldEditor
{
    Q_OBJECT

public:
    ComboFieldEditor(const PDFFormField& field, QWidget* parent);

    FormValue value() const override;
    void enter() override;
    void enterAt(QPoint place, Qt::KeyboardModifiers modifiers) override;

protected:
    void scaleTo(double scale) override;
    void showField() override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QComboBox* box() const;
};

} // namespace pdf
