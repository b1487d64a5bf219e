// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/FieldPainter.h"

#include "pdf/AnnotationChange.h"
#include "pdf/Engine.h"
#include "pdf/FieldAppearance.h"
#include "pdf/FieldTree.h"
#include "pdf/Handles.h"
#include "pdf/ToUnicode.h"

// Where MuPDF is called, nothing is made that would have to be destroyed: its errors skip destructors.
namespace pdf {
namespace {

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

} // namespace

FieldPainter::FieldPainter(DocumentHandle& document, CookieScope& scope)
    : m_document(document)
    , m_scope(scope)
{}

std::optional<PDFError> FieldPainter::paint(AnnotationChange& change, pdf_obj* widget)
{
    fields::FieldRecord record;
    bool isField = false;
    auto error = engine::attempt(
        m_scope, [&](fz_context* ctx) { isField = fields::readField(ctx, m_document, widget, record); });
    if (error || !isField)
        return error;
    fields::interpretValue(record);
    return paint(change, widget, record);
}

std::optional<PDFError>
FieldPainter::paint(AnnotationChange& change, pdf_obj* widget, fields::FieldRecord& record)
{
    switch (record.field.kind) {
    case FormFieldKind::text:
    case FormFieldKind::comboBox:
    case FormFieldKind::listBox:
        return paintValue(change, widget, record);
    case FormFieldKind::checkBox:
    case FormFieldKind::radioButton:
        return paintButton(change, widget, record);
    case FormFieldKind::pushButton:
    case FormFieldKind::signature:
        break;
    }
    return std::nullopt;
}

std::optional<PDFError>
FieldPainter::paintValue(AnnotationChange& change, pdf_obj* widget, fields::FieldRecord& record)
{
    if (record.style.font.isEmpty())
        record.style.font = defaultFontName;
    record.frame.backgroundOpacity = m_document.annotations.backgroundOpacity(widget);
    const char* fontName = record.style.font.constData();
    EncodedFont::Table table;
    auto error = engine::attempt(m_scope, [&](fz_context* ctx) {
        fields::ensureSharedFont(ctx, m_document.document, widget, fontName);
        readFontTable(
            ctx, m_document.document, fields::sharedFont(ctx, m_document.document, widget, fontName), table);
    });
    if (error && error->code != PDFError::Code::damaged)
        return error;
    const FieldAppearance appearance = composeValue(record, EncodedFont(table));
    error = engine::attempt(m_scope, [&](fz_context* ctx) {
        change.remember(ctx, widget);
        change.beginAppearance(ctx, widget);
        pdf_obj* stream = makeAppearance(ctx, m_document.document, widget, appearance);
        fz_try(ctx)
        {
            change.endAppearance(ctx);
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

std::optional<PDFError>
FieldPainter::paintButton(AnnotationChange& change, pdf_obj* widget, const fields::FieldRecord& record)
{
    const PDFFormField& field = record.field;
    const QByteArray state = field.isOn ? field.onState : QByteArray("Off");
    bool isMissing = false;
    auto error = engine::attempt(m_scope, [&](fz_context* ctx) {
        change.remember(ctx, widget);
        change.touch(ctx, widget);
        pdf_dict_put_name(ctx, widget, PDF_NAME(AS), state.constData());
        isMissing = !stateAppearance(ctx, widget, field.onState.constData());
        if (isMissing)
            fields::ensureSharedFont(ctx, m_document.document, widget, symbolFontName);
    });
    if (error || !isMissing)
        return error;
    const FieldAppearance on = composeButton(record, true);
    const FieldAppearance off = composeButton(record, false);
    return engine::attempt(m_scope, [&](fz_context* ctx) {
        change.beginAppearance(ctx, widget);
        pdf_obj* appearances = pdf_dict_put_dict(ctx, widget, PDF_NAME(AP), 1);
        pdf_obj* normal = pdf_dict_put_dict(ctx, appearances, PDF_NAME(N), 2);
        pdf_dict_puts_drop(
            ctx, normal, field.onState.constData(), makeAppearance(ctx, m_document.document, widget, on));
        pdf_dict_puts_drop(ctx, normal, "Off", makeAppearance(ctx, m_document.document, widget, off));
        change.endAppearance(ctx);
    });
}

} // namespace pdf
