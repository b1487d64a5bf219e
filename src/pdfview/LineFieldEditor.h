// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "pdfview/FieldEditor.h"

#include <limits>

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

/// For a control that would else cut a long text without a word. The document says what is too long.
constexpr int unlimitedLength = std::numeric_limits<int>::max();

/// How a field wants its text to stand.
Qt::Alignment alignmentOf(const PDFFormField& field);

} // namespace pdf
