// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/FormWriter.h"

#include "pdf/Engine.h"
#include "pdf/FieldTree.h"
#include "pdf/Handles.h"
#include "pdf/Limits.h"

#include <algorithm>
#include <utility>

// Where MuPDF is called, nothing is made that would have to be destroyed: its errors skip destructors.
namespace pdf {
namespace {

using fields::FieldGroup;

/// The widget's object, borrowed, or null where it is gone.
pdf_obj* findWidget(fz_context* ctx, pdf_obj* page, const FormWidget& widget)
{
    pdf_obj* annotations = pdf_dict_get(ctx, page, PDF_NAME(Annots));
    if (widget.object == 0) {
        pdf_obj* annotation = pdf_array_get(ctx, annotations, widget.position);
        return pdf_is_indirect(ctx, annotation) ? nullptr : annotation;
    }
    const int count = pdf_array_len(ctx, annotations);
    for (int i = 0; i < count; ++i) {
        pdf_obj* annotation = pdf_array_get(ctx, annotations, i);
        if (pdf_to_num(ctx, annotation) == widget.object)
            return annotation;
    }
    return nullptr;
}

bool isButton(const PDFFormField& field)
{
    return field.kind == FormFieldKind::checkBox || field.kind == FormFieldKind::radioButton;
}

bool hasSameValue(const PDFFormField& a, const PDFFormField& b)
{
    return a.text == b.text && a.isOn == b.isOn && a.selection == b.selection;
}

/// Remembers the widget, its field and the nodes in between.
void rememberUpTo(fz_context* ctx, AnnotationChange& change, pdf_obj* widget, pdf_obj* field)
{
    pdf_obj* node = widget;
    for (int depth = 0; depth < limits::fieldTreeDepth && node; ++depth) {
        change.remember(ctx, node);
        if (pdf_resolve_indirect(ctx, node) == pdf_resolve_indirect(ctx, field))
            return;
        node = pdf_dict_get(ctx, node, PDF_NAME(Parent));
    }
}

/// Removes the field's value from the widget and the nodes in between, where it would hide that of the field.
void removeValuesBelow(fz_context* ctx, pdf_obj* widget, pdf_obj* field)
{
    pdf_obj* node = widget;
    for (int depth = 0; depth < limits::fieldTreeDepth; ++depth) {
        if (pdf_resolve_indirect(ctx, node) == pdf_resolve_indirect(ctx, field))
            return;
        pdf_dict_del(ctx, node, PDF_NAME(V));
        node = pdf_dict_get(ctx, node, PDF_NAME(Parent));
    }
}

void putOption(fz_context* ctx, pdf_obj* array, const QByteArray& value)
{
    pdf_array_push_text_string(ctx, array, value.constData());
}

/// Writes the values as strings: one alone, several as an array with their indices.
void putSelection(
    fz_context* ctx, pdf_obj* node, const std::vector<QByteArray>& values, const std::vector<int>& selection,
    bool isMultipleChoice)
{
    pdf_dict_del(ctx, node, PDF_NAME(I));
    if (values.empty()) {
        pdf_dict_del(ctx, node, PDF_NAME(V));
        return;
    }
    if (values.size() == 1) {
        pdf_dict_put_text_string(ctx, node, PDF_NAME(V), values.front().constData());
    } else {
        pdf_obj* array = pdf_dict_put_array(ctx, node, PDF_NAME(V), static_cast<int>(values.size()));
        for (const QByteArray& value : values)
            putOption(ctx, array, value);
    }
    if (!isMultipleChoice)
        return;
    pdf_obj* indices = pdf_dict_put_array(ctx, node, PDF_NAME(I), static_cast<int>(selection.size()));
    for (const int index : selection)
        pdf_array_push_int(ctx, indices, index);
}

/// The strings that stand for the field's value in the data.
std::vector<QByteArray> valuesOf(const PDFFormField& field)
{
    std::vector<QByteArray> values;
    for (const int index : field.selection)
        values.push_back(field.options[static_cast<std::size_t>(index)].exportValue.toUtf8());
    const bool isText = field.kind == FormFieldKind::text;
    if (isText || (field.kind == FormFieldKind::comboBox && values.empty() && !field.text.isEmpty()))
        values = {field.text.toUtf8()};
    return values;
}

/// The zero-based index of the page in the engine's own counting, or -1.
int pageIndex(fz_context* ctx, DocumentHandle& document, pdf_obj* page)
{
    int index = -1;
    fz_var(index);
    fz_try(ctx)
    {
        index = pdf_lookup_page_number(ctx, document.document, page);
        // Where the page tree counts wrongly the two disagree.
        if (pdf_to_num(ctx, document.pages.find(ctx, index)) != pdf_to_num(ctx, page))
            index = -1;
    }
    fz_catch(ctx)
    {
        engine::rethrowUnlessDamage(ctx);
        index = -1;
    }
    return index;
}

} // namespace

FormWriter::FormWriter(DocumentHandle& document, CookieScope& scope)
    : m_document(document)
    , m_scope(scope)
    , m_painter(document, scope)
    , m_group(document)
{}

Result<std::vector<int>> FormWriter::set(const FormWidget& widget, const FormValue& value)
{
    pdf_obj* object = nullptr;
    if (auto error = engine::attempt(m_scope, [&](fz_context* ctx) {
            pdf_obj* page = m_document.pages.find(ctx, widget.page);
            object = page ? findWidget(ctx, page, widget) : nullptr;
        }))
        return *error;
    return set(object, widget.page, value);
}

Result<std::vector<int>> FormWriter::set(pdf_obj* widget, int page, const FormValue& value)
{
    m_page = page;
    bool canFill = false;
    if (auto error = engine::attempt(m_scope, [&](fz_context* ctx) {
            canFill = fields::allowsFilling(ctx, m_document);
            if (widget)
                m_group.collectAround(ctx, widget);
        }))
        return *error;
    if (m_group.members().empty())
        return PDFError{PDFError::Code::refused, QStringLiteral("there is no such field any more")};
    PDFFormField& field = m_group.members().front().record.field;
    field.isReadOnly |= !canFill;
    const PDFFormField before = field;
    if (auto refusal = takeValue(field, value))
        return *refusal;
    if (hasSameValue(before, field))
        return std::vector<int>();
    if (isButton(field))
        spreadState();
    else
        spreadValue();
    if (auto error = write())
        return *error;
    return std::exchange(m_pages, {});
}

void FormWriter::spreadValue()
{
    const PDFFormField& set = m_group.members().front().record.field;
    for (FieldGroup::Member& member : m_group.members()) {
        PDFFormField& field = member.record.field;
        field.text = set.text;
        field.selection = set.selection;
        std::erase_if(
            field.selection, [&](int i) { return std::cmp_greater_equal(i, field.options.size()); });
    }
}

void FormWriter::spreadState()
{
    const fields::FieldRecord& set = m_group.members().front().record;
    const bool isShared = set.field.kind == FormFieldKind::checkBox || set.isInUnison;
    const bool isOn = set.field.isOn;
    for (FieldGroup::Member& member : m_group.members()) {
        PDFFormField& field = member.record.field;
        const bool isAlike = isShared && field.onState == set.field.onState;
        field.isOn = isOn && (isAlike || &member.record == &set);
    }
}

std::optional<PDFError> FormWriter::write()
{
    m_document.noteChange();
    AnnotationChange change(m_document);
    auto error = writeValues(change);
    for (FieldGroup::Member& member : m_group.members()) {
        if (!error)
            error = m_painter.paint(change, member.widget.get(), member.record);
    }
    if (error)
        return error;
    change.commit();
    for (const int page : m_pages)
        m_document.textChanges.note(page);
    for (const FieldGroup::Member& member : m_group.members())
        m_document.annotations.rereadValue(m_scope, member.widget.get());
    renewAll();
    return std::nullopt;
}

std::optional<PDFError> FormWriter::writeValues(AnnotationChange& change)
{
    const PDFFormField& set = m_group.members().front().record.field;
    const std::vector<QByteArray> values = valuesOf(set);
    const QByteArray state = set.isOn ? set.onState : QByteArray("Off");
    return engine::attempt(m_scope, [&](fz_context* ctx) {
        pdf_obj* root = pdf_dict_get(ctx, pdf_trailer(ctx, m_document.document), PDF_NAME(Root));
        change.remember(ctx, root);
        change.remember(ctx, fields::form(ctx, m_document.document));
        for (const FieldGroup::Member& member : m_group.members()) {
            pdf_obj* field = member.field.get();
            rememberUpTo(ctx, change, member.widget.get(), field);
            fields::prepareForChange(ctx, m_document.document, field);
            removeValuesBelow(ctx, member.widget.get(), field);
            // The same value with fonts and colours, which is not kept up.
            pdf_dict_dels(ctx, field, "RV");
            if (isButton(set))
                pdf_dict_put_name(ctx, field, PDF_NAME(V), state.constData());
            else if (set.kind == FormFieldKind::text)
                pdf_dict_put_text_string(ctx, field, PDF_NAME(V), values.front().constData());
            else
                putSelection(ctx, field, values, set.selection, set.isMultipleChoice);
        }
        collectPages(ctx);
    });
}

/// Draws the other fields of a form whose appearances viewers are to make. Where that fails, they still are.
void FormWriter::renewAll()
{
    FieldGroup all(m_document);
    bool isWhole = false;
    auto error = engine::attempt(m_scope, [&](fz_context* ctx) {
        if (fields::needsAppearances(ctx, m_document.document))
            isWhole = all.collectAll(ctx, limits::renewedFields);
    });
    for (FieldGroup::Member& member : all.members()) {
        const FormFieldKind kind = member.record.field.kind;
        const bool hasValue =
            kind == FormFieldKind::text || kind == FormFieldKind::comboBox || kind == FormFieldKind::listBox;
        if (error || !isWhole || !hasValue)
            continue;
        AnnotationChange change(m_document);
        error = m_painter.paint(change, member.widget.get(), member.record);
        if (!error)
            change.commit();
    }
    // After a failure, too: a part of it has been done.
    if (!all.members().empty())
        m_document.textChanges.noteAllPages();
    if (error || !isWhole)
        return;
    static_cast<void>(engine::attempt(m_scope, [&](fz_context* ctx) {
        pdf_dict_dels(ctx, fields::form(ctx, m_document.document), "NeedAppearances");
    }));
    m_document.annotationLog.noteAll();
}

void FormWriter::collectPages(fz_context* ctx)
{
    pdf_obj* ownPage = m_document.pages.find(ctx, m_page);
    m_pages.push_back(m_page);
    for (const FieldGroup::Member& member : m_group.members()) {
        pdf_obj* page = pdf_dict_get(ctx, member.widget.get(), PDF_NAME(P));
        if (!pdf_is_dict(ctx, page) || pdf_to_num(ctx, page) == pdf_to_num(ctx, ownPage))
            continue;
        const int index = pageIndex(ctx, m_document, page);
        if (index >= 0 && std::find(m_pages.begin(), m_pages.end(), index) == m_pages.end())
            m_pages.push_back(index);
    }
}

} // namespace pdf
