// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "pdfview/FieldEditor.h"

class QAbstractButton;

namespace pdf {

/// Turns check boxes and radio buttons on and off. What they look like is the page's matter; the control is
/// there for the keyboard and for screen readers.
class ButtonFieldEditor final : public FieldEditor
{
    Q_OBJECT

public:
    ButtonFieldEditor(const PDFFormField& field, QWidget* parent);

    FormValue value() const override;
    void click() override;

protected:
    void showField() override;
    bool takesKey(const QKeyEvent& event) override;

private:
    QAbstractButton* button() const;
};

} // namespace pdf
