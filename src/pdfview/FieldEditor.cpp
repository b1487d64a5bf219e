// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdfview/FieldEditor.h"

#include "pdf/FieldLayout.h"
#include "pdf/SystemText.h"
#include "pdfview/ButtonFieldEditor.h"
#include "pdfview/CombFieldEditor.h"
#include "pdfview/ComboFieldEditor.h"
#include "pdfview/LineFieldEditor.h"
#include "pdfview/ListFieldEditor.h"
#include "pdfview/ParagraphFieldEditor.h"

#include <QApplication>
#include <QKeyEvent>
#include <QWidget>

#include <algorithm>
#include <cmath>

namespace pdf {
namespace {

FormValue valueOf(const PDFFormField& field)
{
    switch (field.kind) {
    case FormFieldKind::checkBox:
    case FormFieldKind::radioButton:
        return field.isOn;
    case FormFieldKind::listBox:
        return field.selection;
    case FormFieldKind::comboBox:
        if (!field.isEditable)
            return field.selection;
        [[fallthrough]];
    default:
        return field.text;
    }
}

} // namespace

std::unique_ptr<FieldEditor> FieldEditor::make(const PDFFormField& field, QWidget* parent)
{
    switch (field.kind) {
    case FormFieldKind::text:
        if (field.isMultiline && !field.isPassword)
            return std::make_unique<ParagraphFieldEditor>(field, parent);
        if (field.isComb)
            return std::make_unique<CombFieldEditor>(field, parent);
        return std::make_unique<LineFieldEditor>(field, parent);
    case FormFieldKind::comboBox:
        return std::make_unique<ComboFieldEditor>(field, parent);
    case FormFieldKind::listBox:
        return std::make_unique<ListFieldEditor>(field, parent);
    case FormFieldKind::checkBox:
    case FormFieldKind::radioButton:
        return std::make_unique<ButtonFieldEditor>(field, parent);
    default:
        return nullptr;
    }
}

FieldEditor::FieldEditor(const PDFFormField& field, QWidget* widget)
    : m_field(field)
    , m_widget(widget)
{
    m_widget->hide();
    m_widget->setFocusPolicy(Qt::StrongFocus);
    m_widget->setAccessibleName(field.alternateName.isEmpty() ? field.name : field.alternateName);
    m_widget->setToolTip(field.alternateName);
    watch(m_widget);
}

FieldEditor::~FieldEditor()
{
    m_widget->removeEventFilter(this);
    // Otherwise hiding it would give the keyboard to whatever comes next.
    if (QWidget* focused = m_widget->focusWidget())
        focused->clearFocus();
    m_widget->hide();
    m_widget->deleteLater();
}

bool FieldEditor::isChanged() const
{
    return value() != valueOf(m_field);
}

void FieldEditor::setField(const PDFFormField& field)
{
    const bool wasChanged = isChanged();
    m_field = field;
    if (!wasChanged)
        showField();
}

void FieldEditor::enterValue(const FormValue& value)
{
    const PDFFormField field = m_field;
    if (const auto* text = std::get_if<QString>(&value)) {
        m_field.text = *text;
        m_field.selection.clear();
    } else if (const auto* selection = std::get_if<std::vector<int>>(&value)) {
        m_field.selection = *selection;
    }
    showField();
    m_field = field;
}

void FieldEditor::refuse(const PDFFormField& field, const QString& reason)
{
    m_field = field;
    m_isRefused = true;
    m_widget->setAccessibleDescription(reason);
}

void FieldEditor::endRefusal()
{
    m_isRefused = false;
    m_widget->setAccessibleDescription({});
}

void FieldEditor::place(const QRectF& rect, double scale)
{
    m_rect = rect;
    m_scale = scale;
    m_widget->setGeometry(rect.toAlignedRect());
    scaleTo(scale);
}

QPixmap FieldEditor::picture() const
{
    return m_widget->grab(QRect(QPoint(), m_rect.toAlignedRect().size()));
}

void FieldEditor::enter()
{}

void FieldEditor::enterAt(QPoint, Qt::KeyboardModifiers)
{}

void FieldEditor::click()
{}

void FieldEditor::scaleTo(double)
{}

void FieldEditor::watch(QWidget* part)
{
    part->installEventFilter(this);
}

void FieldEditor::dress()
{
    // The page is light whatever the desktop's colours are.
    QPalette palette = m_widget->palette();
    palette.setColor(QPalette::Base, m_field.backgroundColour.value_or(Qt::white));
    palette.setColor(QPalette::Text, m_field.textColour);
    palette.setColor(QPalette::Button, m_field.backgroundColour.value_or(Qt::white));
    palette.setColor(QPalette::ButtonText, m_field.textColour);
    m_widget->setPalette(palette);
    m_widget->setFont(SystemFont(m_field.fontName).font());
}

int FieldEditor::fontPixels(const QString& text) const
{
    double points = m_field.fontSize;
    if (points <= 0.0) {
        PDFFormField field = m_field;
        field.text = text;
        const QSizeF size = m_field.bounds.size();
        points = layOutText(
                     field, m_field.rotation % 180 == 0 ? size : size.transposed(), borderInset(field),
                     SystemFont(m_field.fontName))
                     .fontSize;
    }
    return std::max(1, static_cast<int>(std::lround(points * m_scale)));
}

int FieldEditor::padding() const
{
    return static_cast<int>(std::lround(2.0 * borderInset(m_field) * m_scale));
}

bool FieldEditor::eventFilter(QObject*, QEvent* event)
{
    switch (event->type()) {
    case QEvent::ShortcutOverride:
        // Keeps the window's own commands away from the keys that mean something here.
        if (isOwnKey(*static_cast<QKeyEvent*>(event)))
            event->accept();
        return false;
    case QEvent::KeyPress:
        return filterKey(*static_cast<QKeyEvent*>(event));
    case QEvent::FocusOut:
        if (losesFocus(*static_cast<QFocusEvent*>(event)))
            Q_EMIT left();
        return false;
    default:
        return false;
    }
}

bool FieldEditor::isOwnKey(const QKeyEvent& event) const
{
    switch (event.key()) {
    case Qt::Key_Tab:
    case Qt::Key_Backtab:
    case Qt::Key_Escape:
    case Qt::Key_Return:
    case Qt::Key_Enter:
        return true;
    default:
        return false;
    }
}

bool FieldEditor::filterKey(const QKeyEvent& event)
{
    switch (event.key()) {
    case Qt::Key_Tab:
    case Qt::Key_Backtab:
        // With Control or Alt they belong to the window.
        if (event.modifiers() & ~Qt::ShiftModifier)
            return false;
        Q_EMIT walked(event.key() == Qt::Key_Tab);
        return true;
    case Qt::Key_Escape:
        Q_EMIT cancelled();
        return true;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        if (takesReturn() && !(event.modifiers() & Qt::ControlModifier))
            return false;
        Q_EMIT accepted();
        return true;
    default:
        return takesKey(event);
    }
}

bool FieldEditor::losesFocus(const QFocusEvent& event) const
{
    // A menu, an input method's window or another window gives the keyboard back.
    if (event.reason() == Qt::PopupFocusReason || event.reason() == Qt::MenuBarFocusReason ||
        event.reason() == Qt::ActiveWindowFocusReason)
        return false;
    // The list of a combo box is a window of its own, but a child all the same.
    for (const QWidget* heir = QApplication::focusWidget(); heir; heir = heir->parentWidget()) {
        if (heir == m_widget)
            return false;
    }
    return true;
}

} // namespace pdf
