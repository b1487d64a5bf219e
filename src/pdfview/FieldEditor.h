// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "pdf/FieldValue.h"
#include "pdf/PDFFormField.h"

#include <QObject>
#include <QPixmap>
#include <QPointF>
#include <QRectF>

#include <memory>

class QFocusEvent;
class QKeyEvent;
class QMouseEvent;
class QWidget;

namespace pdf {

/// A control of the desktop's toolkit that stands over a form field while the user fills it in, so input
/// methods, the clipboard, undo and screen readers work as everywhere. It knows nothing of the document: it
/// is given a field and has a value.
class FieldEditor : public QObject
{
    Q_OBJECT

public:
    /// The editor for a field of this kind; null for push buttons and signatures. The control becomes a child
    /// of the parent and is hidden.
    static std::unique_ptr<FieldEditor> make(const PDFFormField& field, QWidget* parent);

    /// The control goes a little later, since it may be about to handle an event.
    ~FieldEditor() override;

    QWidget* widget() const { return m_widget; }
    const PDFFormField& field() const { return m_field; }

    virtual FormValue value() const = 0;
    /// True where the value is not that of the field.
    bool isChanged() const;
    /// From now on the field as it is counts as unchanged; what the user has entered since stays.
    void setField(const PDFFormField& field);
    /// Gives up what the user has entered.
    void revert() { showField(); }

    /// Shows a value that the field does not have, as if the user had entered it.
    void enterValue(const FormValue& value);
    /// The document has not taken what was entered: its field is as given. What was entered stays.
    void refuse(const PDFFormField& field, const QString& reason);
    bool isRefused() const { return m_isRefused; }
    void endRefusal();

    /// Puts the control over the field. `rect` is in coordinates of its parent, `scale` in their units per
    /// page point.
    void place(const QRectF& rect, double scale);
    /// The control as it looks, as far as it stands over the field.
    QPixmap picture() const;

    /// The user came here with the keyboard.
    virtual void enter();
    /// The user came here with a click at this place of the control.
    virtual void enterAt(QPoint place, Qt::KeyboardModifiers modifiers);
    /// The button was let go over the field that it was pressed on.
    virtual void click();

Q_SIGNALS:
    /// The value is to be set now; the user stays.
    void committed();
    /// The user is done.
    void accepted();
    /// The user gives up what was entered.
    void cancelled();
    /// The user goes on to the next field or the one before.
    void walked(bool forward);
    /// The keyboard goes to something else.
    void left();
    /// Of a group of radio buttons the user wants the next one or the one before.
    void stepped(bool forward);

protected:
    FieldEditor(const PDFFormField& field, QWidget* widget);

    /// Adapts sizes; the control has its place already.
    virtual void scaleTo(double scale);
    /// Brings the control in line with the field.
    virtual void showField() = 0;
    /// True where the Return key is part of the text.
    virtual bool takesReturn() const { return false; }
    /// Handles a key of its own.
    virtual bool takesKey(const QKeyEvent&) { return false; }

    /// A child of the control that has the keyboard in its stead.
    void watch(QWidget* part);
    /// Colours and font of the field; the font size comes with the scale.
    void dress();
    double scale() const { return m_scale; }
    /// Where the field is, in coordinates of the parent.
    const QRectF& rect() const { return m_rect; }
    /// The size of the text in pixels; of a text that fits itself to the field, for the text given.
    int fontPixels(const QString& text) const;
    /// From the field's edge to its text, in units of the parent.
    int padding() const;

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    bool filterKey(const QKeyEvent& event);
    bool isOwnKey(const QKeyEvent& event) const;
    bool losesFocus(const QFocusEvent& event) const;

    PDFFormField m_field;
    QWidget* const m_widget;
    QRectF m_rect;
    double m_scale = 1.0;
    bool m_isRefused = false;
};

} // namespace pdf
