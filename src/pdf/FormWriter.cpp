// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/FormWriter.h"

#include "pdf/Engine.h"
#include "pdf/FieldAppearance.h"
#include "pdf/FieldTree.h"
#include "pdf/Handles.h"
#include "pdf/Limits.h"
#include "pdf/ToUnicode.h"

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

/// The appearance of the state, or null; where it has no box, nothing of it is seen.
pdf_obj* stateAppearance(fz_context* ctx, pdf_obj* widget, const char* state)
{
    pdf_obj* normal = pdf_dict_get(ctx, pdf_dict_get(ctx, widget, PDF_NAME(AP)), PDF_NAME(N));
    if (pdf_is_stream(ctx, normal))
        return nullptr;
    pdf_obj* appearance = pdf_dict_gets(ctx, normal, state);
    const bool hasBox = pdf_array_len(ctx, pdf_dict_get(ctx, appearance, PDF_NAME(BBox))) == 4;
    return hasBox && pdf_is_stream(ctx, appearance) ? appearance : nullptr;
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
    , m_group(document)
{}

Result<std::vector<int>> FormWriter::set(const FormWidget& widget, const FormValue& value)
{
    m_widget = widget;
    if (auto error = find(widget))
        return *error;
    PDFFormField& field = m_group.members().front().record.field;
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

std::optional<PDFError> FormWriter::find(const FormWidget& widget)
{
    bool canFill = false;
    auto error = engine::attempt(m_scope, [&](fz_context* ctx) {
        pdf_obj* page = m_document.pages.find(ctx, widget.page);
        pdf_obj* object = page ? findWidget(ctx, page, widget) : nullptr;
        canFill = fields::allowsFilling(ctx, m_document);
        if (object)
            m_group.collectAround(ctx, object);
    });
    if (error)
        return error;
    if (m_group.members().empty())
        return PDFError{PDFError::Code::refused, QStringLiteral("there is no such field any more")};
    m_group.members().front().record.field.isReadOnly |= !canFill;
    return std::nullopt;
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
    const PDFFormField& set = m_group.members().front().record.field;
    const std::vector<QByteArray> values = valuesOf(set);
    const QByteArray state = set.isOn ? set.onState : QByteArray("Off");
    bool needsAppearances = false;
    m_document.noteChange();
    auto error = engine::attempt(m_scope, [&](fz_context* ctx) {
        needsAppearances = fields::needsAppearances(ctx, m_document.document);
        for (const FieldGroup::Member& member : m_group.members()) {
            pdf_obj* field = member.field.get();
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
    for (FieldGroup::Member& member : m_group.members()) {
        if (!error)
            error = writeAppearances(member);
    }
    if (!error && needsAppearances)
        error = renewAll();
    // After a failure, too: a part of it may have been done.
    if (needsAppearances)
        m_document.textChanges.noteAllPages();
    for (const int page : m_pages)
        m_document.textChanges.note(page);
    return error;
}

std::optional<PDFError> FormWriter::writeAppearances(FieldGroup::Member& member)
{
    return isButton(member.record.field) ? writeButtonAppearances(member) : writeValueAppearance(member);
}

std::optional<PDFError> FormWriter::writeValueAppearance(FieldGroup::Member& member)
{
    if (member.record.style.font.isEmpty())
        member.record.style.font = defaultFontName;
    const char* fontName = member.record.style.font.constData();
    pdf_obj* widget = member.widget.get();
    EncodedFont::Table table;
    auto error = engine::attempt(m_scope, [&](fz_context* ctx) {
        fields::ensureSharedFont(ctx, m_document.document, widget, fontName);
        readFontTable(
            ctx, m_document.document, fields::sharedFont(ctx, m_document.document, widget, fontName), table);
    });
    if (error && error->code != PDFError::Code::damaged)
        return error;
    const FieldAppearance appearance = composeValue(member.record, EncodedFont(table));
    error = engine::attempt(m_scope, [&](fz_context* ctx) {
        pdf_obj* stream = makeAppearance(ctx, m_document.document, widget, appearance);
        fz_try(ctx)
        {
            pdf_obj* appearances = pdf_dict_put_dict(ctx, widget, PDF_NAME(AP), 1);
            pdf_dict_put(ctx, appearances, PDF_NAME(N), stream);
            pdf_dict_del(ctx, widget, PDF_NAME(AS));
        }
        fz_always(ctx)
        {
            pdf_drop_obj(ctx, stream);
        }
        fz_catch(ctx)
        {
            fz_rethrow(ctx);
        }
    });
    if (!error && appearance.showsPage())
        error = writeToUnicode(m_scope, m_document.document, widget, textPagePath, appearance.textPage.text);
    return error;
}

std::optional<PDFError> FormWriter::writeButtonAppearances(FieldGroup::Member& member)
{
    const PDFFormField& field = member.record.field;
    pdf_obj* widget = member.widget.get();
    const QByteArray state = field.isOn ? field.onState : QByteArray("Off");
    bool isMissing = false;
    auto error = engine::attempt(m_scope, [&](fz_context* ctx) {
        pdf_dict_put_name(ctx, widget, PDF_NAME(AS), state.constData());
        isMissing = !stateAppearance(ctx, widget, field.onState.constData());
        if (isMissing)
            fields::ensureSharedFont(ctx, m_document.document, widget, symbolFontName);
    });
    if (error || !isMissing)
        return error;
    const FieldAppearance on = composeButton(member.record, true);
    const FieldAppearance off = composeButton(member.record, false);
    return engine::attempt(m_scope, [&](fz_context* ctx) {
        pdf_obj* appearances = pdf_dict_put_dict(ctx, widget, PDF_NAME(AP), 1);
        pdf_obj* normal = pdf_dict_put_dict(ctx, appearances, PDF_NAME(N), 2);
        pdf_dict_puts_drop(
            ctx, normal, field.onState.constData(), makeAppearance(ctx, m_document.document, widget, on));
        pdf_dict_puts_drop(ctx, normal, "Off", makeAppearance(ctx, m_document.document, widget, off));
    });
}

std::optional<PDFError> FormWriter::renewAll()
{
    FieldGroup all(m_document);
    bool isWhole = false;
    auto error = engine::attempt(
        m_scope, [&](fz_context* ctx) { isWhole = all.collectAll(ctx, limits::renewedFields); });
    for (FieldGroup::Member& member : all.members()) {
        const FormFieldKind kind = member.record.field.kind;
        const bool hasValue =
            kind == FormFieldKind::text || kind == FormFieldKind::comboBox || kind == FormFieldKind::listBox;
        if (!error && isWhole && hasValue)
            error = writeValueAppearance(member);
    }
    if (error || !isWhole)
        return error;
    return engine::attempt(m_scope, [&](fz_context* ctx) {
        pdf_dict_dels(ctx, fields::form(ctx, m_document.document), "NeedAppearances");
    });
}

void FormWriter::collectPages(fz_context* ctx)
{
    pdf_obj* ownPage = m_document.pages.find(ctx, m_widget.page);
    m_pages.push_back(m_widget.page);
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
