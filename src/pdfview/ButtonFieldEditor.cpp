// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdfview/ButtonFieldEditor.h"

#include <QCheckBox>
#include <QKeyEvent>
#include <QRadioButton>

namespace pdf {
namespace {

/// A button that the page shows in its stead.
template <typename Button>
class UnseenButton : public Button
{
public:
    using Button::Button;

protected:
    void paintEvent(QPaintEvent*) override {}
    // The whole field is the button, not only what the style would draw.
    bool hitButton(const QPoint& place) const override { return this->rect().contains(place); }
};

QAbstractButton* makeButton(const PDFFormField& field, QWidget* parent)
{
    if (field.kind == FormFieldKind::checkBox)
        return new UnseenButton<QCheckBox>(parent);
    auto* button = new UnseenButton<QRadioButton>(parent);
    button->setAutoExclusive(!field.canTurnOff);
    return button;
}

} // namespace

ButtonFieldEditor::ButtonFieldEditor(const PDFFormField& field, QWidget* parent)
    : FieldEditor(field, makeButton(field, parent))
{
    button()->setCursor(Qt::PointingHandCursor);
    button()->setChecked(field.isOn);
    connect(button(), &QAbstractButton::clicked, this, [this] {
        if (isChanged())
            Q_EMIT committed();
    });
}

FormValue ButtonFieldEditor::value() const
{
    return button()->isChecked();
}

void ButtonFieldEditor::click()
{
    button()->click();
}

void ButtonFieldEditor::showField()
{
    // An exclusive button cannot be unchecked by others than its group.
    const bool isExclusive = button()->autoExclusive();
    button()->setAutoExclusive(false);
    button()->setChecked(field().isOn);
    button()->setAutoExclusive(isExclusive);
}

bool ButtonFieldEditor::takesKey(const QKeyEvent& event)
{
    if (field().kind != FormFieldKind::radioButton)
        return false;
    switch (event.key()) {
    case Qt::Key_Right:
    case Qt::Key_Down:
        Q_EMIT stepped(true);
        return true;
    case Qt::Key_Left:
    case Qt::Key_Up:
        Q_EMIT stepped(false);
        return true;
    default:
        return false;
    }
}

QAbstractButton* ButtonFieldEditor::button() const
{
    return static_cast<QAbstractButton*>(widget());
}

} // namespace pdf
