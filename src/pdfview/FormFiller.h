// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "pdfview/FieldEditor.h"
#include "pdfview/FormJobs.h"

#include <QObject>
#include <QPixmap>
#include <QPointer>

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <vector>

class QMouseEvent;
class QPainter;

namespace pdf {

class FormNotice;
class PDFView;

/// Lets the user fill in form fields in their places on the pages of a view. It knows which fields there are,
/// opens an editor over the one that is clicked or walked to, and hands what was entered to the document.
/// Only one editor is open at a time.
///
/// A value that the field or the document does not take stays in its editor, marked, with a notice that says
/// why, until the user changes it or gives it up; no other editor opens before. One that is refused after its
/// editor was closed comes back in a new one.
///
/// Main thread. The document is asked on another one, so fields of a page answer a moment after it is shown.
class FormFiller : public QObject
{
    Q_OBJECT

public:
    explicit FormFiller(PDFView& view);
    ~FormFiller() override;

    /// Marks the fields that can be filled in, and the one that has the keyboard. The painter's unit is the
    /// view point, its origin the viewport's upper left.
    void paint(QPainter& painter);

    // True when the event was meant for a field.
    bool mousePress(const QMouseEvent& event);
    bool mouseMove(const QMouseEvent& event);
    bool mouseRelease(const QMouseEvent& event);

    /// The Tab key was pressed in the view: goes to the first field from the current page on, or to the last
    /// one up to it. False when the document has no form.
    bool walkIn(bool forward);

    /// Hands what is being edited to the document and calls the function when the document has it, or has
    /// refused it.
    void finish(std::function<void()> then);

    /// Whether the user has entered anything that the document does not have, or not yet.
    bool holdsUntakenValues() const;

    /// The field that is being edited, or null.
    const FieldEditor* editor() const { return m_editor.get(); }

Q_SIGNALS:
    /// The document has another value in one of its fields.
    void valueChanged();
    /// The user has walked beyond the last or the first field of the document.
    void walkedOut(bool forward);

private:
    /// The look of an editor that was closed, until the page shows the new value.
    struct Afterimage
    {
        PDFFormField field;
        QPixmap picture;
    };
    /// A value that was not taken and waits for an editor.
    struct Refusal
    {
        PDFFormField field;
        FormValue value;
        QString reason;
    };

    void startDocument();
    void takeKind(FormJobs::FormKind kind);
    void takePage(const FormPage& page);
    void follow();
    void requestPages();
    void request(int page);
    void refresh(int page);
    void dropAfterimages(int page);

    const PDFFormField* fieldAt(QPointF viewPoint) const;
    QRectF rectOf(const PDFFormField& field) const;
    /// Where the editor goes: upright, also over a field that is turned.
    QRectF editorRect(const PDFFormField& field) const;
    const FormPage* knownPage(int page) const;

    /// False where the editor that is open has to stay, or there is none for the field.
    bool open(const PDFFormField& field);
    void openAt(const PDFFormField& field, QPoint viewPoint, Qt::KeyboardModifiers modifiers);
    bool openFromKeyboard(const PDFFormField& field);
    void showEditor();
    void connectEditor();
    void placeEditor();
    void reveal(const PDFFormField& field);
    /// False where the value was refused.
    bool commit();
    /// The field and others of its name answer with its value at once; the document follows.
    void spread(const PDFFormField& field);
    void takeOutcome(const PDFFormField& before, const FormValue& value, const FormJobs::Outcome& outcome);
    void refuse(const PDFFormField& before, const FormValue& value, const PDFError& error);
    /// Opens an editor with the value that was refused first, unless one is open.
    void openRefused();
    void endRefusal();
    /// What the user saw refused last, if it is still waiting.
    std::optional<Refusal> refusedLast() const;
    /// Tells that a refused value has not come into its document, which is gone, and hands out its text.
    void offerLeft(const Refusal& refusal);
    void showNotice(const QString& text);
    void placeNotice();
    /// False where the value was refused and the editor stays.
    bool close(bool keepsValue);
    /// For the view, if the editor has it.
    void takeKeyboard(const FieldEditor& editor);
    void walk(bool forward);
    void walkFromPage(int page, bool forward);
    void takeFoundPage(const std::optional<FormPage>& page, bool forward);
    void step(bool forward);

    PDFView& m_view;
    std::unique_ptr<FormJobs> m_jobs;
    bool m_hasFields = false;
    std::map<int, FormPage> m_pages;
    std::set<int> m_requested;
    /// Of these, the pages that are to be read once more, since they have changed meanwhile.
    std::set<int> m_outdated;
    std::unique_ptr<FieldEditor> m_editor;
    std::vector<Afterimage> m_afterimages;
    std::vector<Refusal> m_refusals;
    /// Values that the document does not have yet.
    int m_valuesUnderWay = 0;
    /// The button that the mouse was pressed on.
    std::optional<FormWidget> m_pressed;
    QPointer<FormNotice> m_notice;
};

} // namespace pdf
