// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "pdfview/FieldEditor.h"

namespace pdf {

class OptionList;

/// Edits a list box. Its rows lie where the page shows them, whatever the zoom; where there are more than fit
/// into the field, a scroll bar stands beside it.
class ListFieldEditor final : public FieldEditor
{
    Q_OBJECT

public:
    ListFieldEditor(const PDFFormField& field, QWidget* parent);

    FormValue value() const override;
    void enter() override;
    void enterAt(QPoint place, Qt::KeyboardModifiers modifiers) override;

protected:
    void scaleTo(double scale) override;
    void showField() override;

private:
    OptionList* list() const;
    /// Scrolls to where the page begins.
    void showTop();

    bool m_isPlaced = false;
};

} // namespace pdf
