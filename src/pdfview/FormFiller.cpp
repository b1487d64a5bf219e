// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdfview/FormFiller.h"

#include "pdfview/FocusRing.h"
#include "pdfview/FormNotice.h"
#include "pdfview/PDFView.h"
#include "pdfview/TextMarker.h"

#include <QMouseEvent>
#include <QPainter>

#include <algorithm>
#include <cmath>
#include <utility>

namespace pdf {
namespace {

// Fields of so many pages beyond the visible ones are at hand, so that the Tab key needs not wait.
constexpr int pagesAround = 2;

// View points around a field that has been walked to.
constexpr double revealMargin = 32.0;

// How strongly the fields are tinted.
constexpr double tint = 0.1;

// The page is light whatever the desktop's colours are.
constexpr QColor refusalColour(212, 48, 43);

bool isButton(const PDFFormField& field)
{
    return field.kind == FormFieldKind::checkBox || field.kind == FormFieldKind::radioButton;
}

} // namespace

FormFiller::FormFiller(PDFView& view)
    : m_view(view)
{
    connect(&view, &PDFView::documentChanged, this, &FormFiller::startDocument);
    // The first pages come before everything else.
    connect(&view, &PDFView::firstPagesShown, this, [this] {
        if (m_jobs)
            m_jobs->readKind([this](FormJobs::FormKind kind) { takeKind(kind); });
    });
    connect(&view, &PDFView::pagesMoved, this, &FormFiller::follow);
    connect(&view, &PDFView::annotationsOutdated, this, &FormFiller::refresh);
    connect(&view, &PDFView::annotationsRefreshed, this, &FormFiller::dropAfterimages);
    connect(&view, &PDFView::pageOutdated, this, [this](int page) {
        m_pages.erase(page);
        dropAfterimages(page);
        if (m_requested.contains(page))
            m_outdated.insert(page);
        else
            requestPages();
    });
}

FormFiller::~FormFiller() = default;

void FormFiller::startDocument()
{
    const std::optional<Refusal> left = refusedLast();
    if (m_editor)
        takeKeyboard(*m_editor);
    m_editor.reset();
    m_pages.clear();
    m_requested.clear();
    m_outdated.clear();
    m_afterimages.clear();
    m_pressed.reset();
    m_refusals.clear();
    m_valuesUnderWay = 0;
    m_hasFields = false;
    delete m_notice.data();
    m_jobs = m_view.document() ? std::make_unique<FormJobs>(m_view.document()) : nullptr;
    if (left && m_jobs)
        offerLeft(*left);
}

void FormFiller::takeKind(FormJobs::FormKind kind)
{
    m_hasFields = kind.hasFields;
    if (kind.isXFAOnly) {
        // Made only now, because its first text loads a font, and hardly any document needs it.
        showNotice(tr("This form is made for software that understands XFA, and cannot be filled in here."));
    }
    requestPages();
}

void FormFiller::takePage(const FormPage& page)
{
    m_requested.erase(page.page);
    // What has changed meanwhile is read now, not with each change, or a page that takes long to read would
    // never be done.
    if (m_outdated.erase(page.page) > 0)
        request(page.page);
    // While values are on their way the page was read too early; it is read again when they have arrived.
    if (m_valuesUnderWay > 0 && knownPage(page.page))
        return;
    m_pages[page.page] = page;
    m_view.viewport()->update();
    openRefused();
    if (!m_editor || m_editor->field().widget.page != page.page)
        return;
    for (const PDFFormField& field : page.fields) {
        if (field.widget == m_editor->field().widget) {
            m_editor->setField(field);
            placeEditor();
        }
    }
}

void FormFiller::follow()
{
    requestPages();
    placeEditor();
    placeNotice();
}

void FormFiller::requestPages()
{
    if (!m_jobs || !m_hasFields)
        return;
    const auto visible = m_view.pageViewport().visiblePages();
    const int first = std::max(0, visible.first - pagesAround);
    const int last = std::min(m_view.pageCount() - 1, visible.last + pagesAround);
    // The editor needs its page to know where to be, on the screen or off it.
    const int edited = m_editor ? m_editor->field().widget.page : first;
    std::erase_if(m_pages, [&](const auto& entry) {
        return (entry.first < first || entry.first > last) && entry.first != edited;
    });
    for (int page = first; page <= last; ++page) {
        if (!m_pages.contains(page) && !m_requested.contains(page))
            request(page);
    }
}

void FormFiller::request(int page)
{
    m_requested.insert(page);
    m_jobs->readPage(page, [this](const FormPage& result) { takePage(result); });
}

void FormFiller::refresh(int page)
{
    if (!m_jobs)
        return;
    // What has been added may be the document's first field.
    m_hasFields = true;
    if (m_requested.contains(page))
        m_outdated.insert(page);
    else
        request(page);
}

void FormFiller::dropAfterimages(int page)
{
    std::erase_if(m_afterimages, [page](const Afterimage& image) { return image.field.widget.page == page; });
    m_view.viewport()->update();
}

void FormFiller::paint(QPainter& painter)
{
    painter.save();
    painter.setCompositionMode(QPainter::CompositionMode_Multiply);
    const QColor highlight = m_view.palette().color(QPalette::Highlight);
    const QRectF viewRect = m_view.viewport()->rect();
    const auto visible = m_view.pageViewport().visiblePages();
    for (int page = visible.first; page <= visible.last; ++page) {
        const FormPage* known = knownPage(page);
        if (!known)
            continue;
        for (const PDFFormField& field : known->fields) {
            const QRectF rect = field.isFillable() ? rectOf(field) : QRectF();
            if (rect.intersects(viewRect))
                painter.fillRect(rect, TextMarker::tinted(highlight, tint));
        }
    }
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
    for (const Afterimage& image : m_afterimages)
        painter.drawPixmap(editorRect(image.field).toAlignedRect(), image.picture);
    if (m_editor && m_editor->widget()->isVisible())
        paintFocusRing(
            painter, m_editor->widget()->geometry(), m_editor->isRefused() ? refusalColour : highlight);
    painter.restore();
}

const FormPage* FormFiller::knownPage(int page) const
{
    const auto place = m_pages.find(page);
    return place == m_pages.end() ? nullptr : &place->second;
}

const PDFFormField* FormFiller::fieldAt(QPointF viewPoint) const
{
    const auto visible = m_view.pageViewport().visiblePages();
    for (int page = visible.first; page <= visible.last; ++page) {
        const FormPage* known = knownPage(page);
        if (!known)
            continue;
        const auto place =
            std::find_if(known->fields.rbegin(), known->fields.rend(), [&](const PDFFormField& field) {
                return field.isFillable() && rectOf(field).contains(viewPoint);
            });
        if (place != known->fields.rend())
            return &*place;
    }
    return nullptr;
}

QRectF FormFiller::rectOf(const PDFFormField& field) const
{
    const FormPage* page = knownPage(field.widget.page);
    if (!page)
        return {};
    const QRectF display = page->pageToDisplay.mapRect(field.bounds);
    const double scale = m_view.scaleFactor();
    const QPointF origin = m_view.pageRect(field.widget.page).topLeft();
    return {display.topLeft() * scale + origin, display.size() * scale};
}

QRectF FormFiller::editorRect(const PDFFormField& field) const
{
    const QRectF rect = rectOf(field);
    const FormPage* page = knownPage(field.widget.page);
    if (!page || isButton(field))
        return rect;
    // The direction in which the field is read, on the screen.
    const double angle = field.rotation * M_PI / 180.0;
    const QTransform& toDisplay = page->pageToDisplay;
    const QPointF direction =
        toDisplay.map(QPointF(std::cos(angle), std::sin(angle))) - toDisplay.map(QPointF());
    if (std::abs(direction.x()) >= std::abs(direction.y()))
        return rect;
    QRectF upright(QPointF(), rect.size().transposed());
    upright.moveCenter(rect.center());
    return upright;
}

bool FormFiller::open(const PDFFormField& field)
{
    if (!close(true)) {
        // The value that was refused comes first.
        reveal(m_editor->field());
        m_editor->widget()->setFocus(Qt::OtherFocusReason);
        return false;
    }
    m_editor = FieldEditor::make(field, m_view.viewport());
    if (!m_editor)
        return false;
    connectEditor();
    showEditor();
    return true;
}

void FormFiller::showEditor()
{
    placeEditor();
    m_editor->widget()->show();
    m_editor->widget()->setFocus(Qt::OtherFocusReason);
    m_view.viewport()->update();
}

void FormFiller::openAt(const PDFFormField& field, QPoint viewPoint, Qt::KeyboardModifiers modifiers)
{
    if (open(field))
        m_editor->enterAt(m_editor->widget()->mapFrom(m_view.viewport(), viewPoint), modifiers);
}

bool FormFiller::openFromKeyboard(const PDFFormField& field)
{
    // Scrolling may forget the page that the field belongs to.
    // NOLINTNEXTLINE(performance-unnecessary-copy-initialization): see above
    const PDFFormField copy = field;
    if (!open(copy))
        return false;
    reveal(copy);
    m_editor->enter();
    return true;
}

void FormFiller::connectEditor()
{
    FieldEditor* editor = m_editor.get();
    connect(editor, &FieldEditor::committed, this, &FormFiller::commit);
    connect(editor, &FieldEditor::accepted, this, [this] { close(true); });
    connect(editor, &FieldEditor::cancelled, this, [this] { close(false); });
    connect(editor, &FieldEditor::left, this, [this] { close(true); });
    connect(editor, &FieldEditor::walked, this, &FormFiller::walk);
    connect(editor, &FieldEditor::stepped, this, &FormFiller::step);
}

void FormFiller::placeEditor()
{
    if (!m_editor || !knownPage(m_editor->field().widget.page))
        return;
    m_editor->place(editorRect(m_editor->field()), m_view.scaleFactor());
}

void FormFiller::reveal(const PDFFormField& field)
{
    const int page = field.widget.page;
    const auto visible = m_view.pageViewport().visiblePages();
    if (page < visible.first || page > visible.last)
        m_view.goToPage(page);
    m_view.reveal(rectOf(field), revealMargin);
}

bool FormFiller::commit()
{
    if (!m_editor)
        return true;
    const PDFFormField before = m_editor->field();
    const FormValue value = m_editor->value();
    if (m_editor->isChanged()) {
        PDFFormField field = before;
        if (const auto error = takeValue(field, value)) {
            refuse(before, value, *error);
            return !m_editor->isChanged();
        }
        m_editor->setField(field);
        spread(field);
        ++m_valuesUnderWay;
        m_jobs->setValue(before.widget, value, [this, before, value](const FormJobs::Outcome& outcome) {
            takeOutcome(before, value, outcome);
        });
    }
    endRefusal();
    return true;
}

void FormFiller::spread(const PDFFormField& field)
{
    for (auto& [number, page] : m_pages) {
        for (PDFFormField& known : page.fields) {
            if (known.widget == field.widget) {
                known = field;
            } else if (known.name == field.name && known.kind == field.kind) {
                known.text = field.text;
                known.selection = field.selection;
                known.isOn =
                    field.isOn && field.kind == FormFieldKind::checkBox && known.onState == field.onState;
            }
        }
    }
}

void FormFiller::takeOutcome(
    const PDFFormField& before, const FormValue& value, const FormJobs::Outcome& outcome)
{
    --m_valuesUnderWay;
    if (outcome && !outcome->empty()) {
        for (const int page : *outcome)
            m_view.refreshAnnotations(page);
        Q_EMIT valueChanged();
        return;
    }
    // Nothing has become of it; the page shows how it is.
    std::erase_if(
        m_afterimages, [&](const Afterimage& image) { return image.field.widget == before.widget; });
    refresh(before.widget.page);
    if (!outcome)
        refuse(before, value, outcome.error());
}

void FormFiller::takeKeyboard(const FieldEditor& editor)
{
    const QWidget* control = editor.widget();
    // The window's, since another window may have the keyboard just now and give it back.
    const QWidget* focused = m_view.window()->focusWidget();
    if (focused && (focused == control || control->isAncestorOf(focused)))
        m_view.setFocus(Qt::OtherFocusReason);
}

bool FormFiller::close(bool keepsValue)
{
    if (!m_editor)
        return true;
    const bool isChanged = keepsValue && m_editor->isChanged();
    if (isChanged && !commit())
        return false;
    endRefusal();
    const std::unique_ptr<FieldEditor> closed = std::move(m_editor);
    closed->disconnect(this);
    takeKeyboard(*closed);
    // Taken after the keyboard has gone, so that it shows no cursor.
    if (isChanged && !isButton(closed->field()))
        m_afterimages.push_back({closed->field(), closed->picture()});
    m_view.viewport()->update();
    // Whoever closes one editor may be about to open another.
    if (!m_refusals.empty())
        QMetaObject::invokeMethod(this, &FormFiller::openRefused, Qt::QueuedConnection);
    return true;
}

bool FormFiller::mousePress(const QMouseEvent& event)
{
    if (event.button() != Qt::LeftButton)
        return false;
    const PDFFormField* field = fieldAt(event.position());
    if (!field) {
        close(true);
        return false;
    }
    const PDFFormField copy = *field;
    openAt(copy, event.position().toPoint(), event.modifiers());
    if (isButton(copy))
        m_pressed = copy.widget;
    return true;
}

bool FormFiller::mouseMove(const QMouseEvent& event)
{
    if (event.buttons() != Qt::NoButton)
        return m_pressed.has_value();
    const PDFFormField* field = fieldAt(event.position());
    if (!field)
        return false;
    m_view.viewport()->setCursor(
        field->kind == FormFieldKind::text ? Qt::IBeamCursor : Qt::PointingHandCursor);
    return true;
}

bool FormFiller::mouseRelease(const QMouseEvent& event)
{
    const auto pressed = std::exchange(m_pressed, std::nullopt);
    if (!pressed)
        return false;
    const PDFFormField* field = fieldAt(event.position());
    if (field && field->widget == *pressed && m_editor && m_editor->field().widget == *pressed)
        m_editor->click();
    return true;
}

bool FormFiller::holdsUntakenValues() const
{
    return (m_editor && m_editor->isChanged()) || !m_refusals.empty() || m_valuesUnderWay > 0;
}

void FormFiller::finish(std::function<void()> then)
{
    commit();
    if (m_jobs)
        m_jobs->afterAll(std::move(then));
    else
        QMetaObject::invokeMethod(this, std::move(then), Qt::QueuedConnection);
}

} // namespace pdf
