// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/FormReader.h"

#include "pdf/Engine.h"
#include "pdf/FieldTree.h"
#include "pdf/Handles.h"
#include "pdf/Limits.h"
#include "pdf/OptionRows.h"

#include <algorithm>
#include <cstring>
#include <utility>

// Where MuPDF is called, nothing is made that would have to be destroyed: its errors skip destructors.
namespace pdf::fields {
namespace {

QRectF rectOf(const fz_rect& rect)
{
    return QRectF(QPointF(rect.x0, rect.y0), QPointF(rect.x1, rect.y1)).normalized();
}

void readLook(fz_context* ctx, pdf_obj* widget, FieldRecord& record)
{
    PDFFormField& field = record.field;
    field.bounds = rectOf(pdf_dict_get_rect(ctx, widget, PDF_NAME(Rect)));
    pdf_obj* look = pdf_dict_get(ctx, widget, PDF_NAME(MK));
    const int turns = pdf_dict_get_int(ctx, look, PDF_NAME(R)) / 90 % 4;
    field.rotation = (turns + 4) % 4 * 90;
    record.mark = pdf_dict_get_text_string(ctx, look, PDF_NAME(CA));
    readFrame(ctx, widget, record.frame);
    field.backgroundColour = colourOf(record.frame.backgroundColour);
    field.borderWidth = record.frame.hasBorder() ? record.frame.width : 0.0;
    field.borderParts = record.frame.borderParts();
}

void readTextStyle(fz_context* ctx, pdf_document* document, pdf_obj* widget, FieldRecord& record)
{
    std::size_t length = 0;
    const char* string = pdf_to_string(ctx, inheritedOrOfForm(ctx, document, widget, PDF_NAME(DA)), &length);
    record.style = parseDefaultAppearance(QByteArrayView(string, static_cast<qsizetype>(length)));
    record.field.fontSize = record.style.size;
    record.field.textColour = record.style.colour;
    pdf_obj* font = sharedFont(ctx, document, widget, record.style.font.constData());
    record.field.fontName = QString::fromUtf8(pdf_dict_get_name(ctx, font, PDF_NAME(BaseFont)));
    switch (pdf_to_int(ctx, inheritedOrOfForm(ctx, document, widget, PDF_NAME(Q)))) {
    case 1:
        record.field.alignment = FormFieldAlignment::centre;
        break;
    case 2:
        record.field.alignment = FormFieldAlignment::right;
        break;
    default:
        break;
    }
}

void readOptions(fz_context* ctx, pdf_obj* widget, PDFFormField& field)
{
    pdf_obj* options = inherited(ctx, widget, PDF_NAME(Opt));
    const int count = std::min(pdf_array_len(ctx, options), limits::fieldsAtATime);
    for (int i = 0; i < count; ++i) {
        pdf_obj* option = pdf_array_get(ctx, options, i);
        const bool isPair = pdf_is_array(ctx, option);
        const char* exported = pdf_to_text_string(ctx, isPair ? pdf_array_get(ctx, option, 0) : option);
        const char* shown = isPair ? pdf_array_get_text_string(ctx, option, 1) : exported;
        field.options.push_back({QString::fromUtf8(exported), QString::fromUtf8(shown)});
    }
}

void appendValue(fz_context* ctx, pdf_obj* value, QStringList& values)
{
    if (pdf_is_name(ctx, value)) {
        values.append(QString::fromUtf8(pdf_to_name(ctx, value)));
    } else if (pdf_is_string(ctx, value)) {
        values.append(QString::fromUtf8(pdf_to_text_string(ctx, value)));
    } else if (pdf_is_stream(ctx, value)) {
        char* text = pdf_load_stream_or_string_as_utf8(ctx, value);
        fz_try(ctx)
        {
            engine::translated(ctx, [&] { values.append(QString::fromUtf8(text)); });
        }
        fz_always(ctx)
        {
            fz_free(ctx, text);
        }
        fz_catch(ctx)
        {
            fz_rethrow(ctx);
        }
    }
}

void readValues(fz_context* ctx, pdf_obj* widget, FieldRecord& record)
{
    pdf_obj* value = inherited(ctx, widget, PDF_NAME(V));
    if (!pdf_is_array(ctx, value)) {
        appendValue(ctx, value, record.values);
        return;
    }
    const int count = std::min(pdf_array_len(ctx, value), limits::fieldsAtATime);
    for (int i = 0; i < count; ++i)
        appendValue(ctx, pdf_array_get(ctx, value, i), record.values);
    pdf_obj* indices = inherited(ctx, widget, PDF_NAME(I));
    const int indexCount = std::min(pdf_array_len(ctx, indices), limits::fieldsAtATime);
    for (int i = 0; i < indexCount; ++i)
        record.indices.push_back(pdf_array_get_int(ctx, indices, i));
}

void readFlags(fz_context* ctx, pdf_obj* widget, PDFFormField& field)
{
    const int bits = flags(ctx, widget);
    const int annotation = pdf_dict_get_int(ctx, widget, PDF_NAME(F));
    field.isHidden = annotation & (PDF_ANNOT_IS_HIDDEN | PDF_ANNOT_IS_NO_VIEW);
    field.isReadOnly = bits & PDF_FIELD_IS_READ_ONLY || annotation & PDF_ANNOT_IS_READ_ONLY;
    field.isRequired = bits & PDF_FIELD_IS_REQUIRED;
    switch (field.kind) {
    case FormFieldKind::text:
        field.isMultiline = bits & PDF_TX_FIELD_IS_MULTILINE;
        field.isPassword = bits & PDF_TX_FIELD_IS_PASSWORD;
        field.maximumLength = std::max(0, pdf_to_int(ctx, inherited(ctx, widget, PDF_NAME(MaxLen))));
        // Cells are only for fields that are neither of these and whose number of cells is known.
        field.isComb =
            bits & PDF_TX_FIELD_IS_COMB && field.maximumLength > 0 && !field.isMultiline && !field.isPassword;
        break;
    case FormFieldKind::comboBox:
        field.isEditable = bits & PDF_CH_FIELD_IS_EDIT;
        break;
    case FormFieldKind::listBox:
        field.isMultipleChoice = bits & PDF_CH_FIELD_IS_MULTI_SELECT;
        break;
    case FormFieldKind::radioButton:
        field.canTurnOff = !(bits & PDF_BTN_FIELD_IS_NO_TOGGLE_TO_OFF);
        break;
    default:
        break;
    }
}

void readTabOrder(fz_context* ctx, pdf_document* document, pdf_obj* page, PageRecord& record)
{
    const char* order = pdf_to_name(ctx, pdf_dict_gets(ctx, page, "Tabs"));
    if (std::strcmp(order, "R") == 0)
        record.order = TabOrder::rows;
    else if (std::strcmp(order, "C") == 0)
        record.order = TabOrder::columns;
    pdf_obj* root = pdf_dict_get(ctx, pdf_trailer(ctx, document), PDF_NAME(Root));
    pdf_obj* direction = pdf_dict_getp(ctx, root, "ViewerPreferences/Direction");
    record.isRightToLeft = std::strcmp(pdf_to_name(ctx, direction), "R2L") == 0;
}

/// The places of the page's form fields among its annotations, which are walked over only where the page may
/// have others than before: of thousands, a few may be fields, and they are read whenever one has moved.
const std::vector<int>&
widgetPlaces(fz_context* ctx, DocumentHandle& document, pdf_obj* annotations, int pageIndex)
{
    DocumentHandle::WidgetPlaces* known = nullptr;
    engine::translated(ctx, [&] { known = &document.widgetPlaces[pageIndex]; });
    if (known->stamp && document.annotationLog.areListsCurrent(*known->stamp))
        return known->places;
    known->stamp.reset();
    known->places.clear();
    const int count = std::min(pdf_array_len(ctx, annotations), limits::fieldsAtATime);
    for (int i = 0; i < count; ++i) {
        pdf_obj* widget = pdf_array_get(ctx, annotations, i);
        if (pdf_name_eq(ctx, pdf_dict_get(ctx, widget, PDF_NAME(Subtype)), PDF_NAME(Widget)))
            engine::translated(ctx, [&] { known->places.push_back(i); });
    }
    known->stamp = document.annotationLog.now();
    return known->places;
}

bool readWidget(fz_context* ctx, DocumentHandle& document, pdf_obj* widget, FieldRecord& record)
{
    PDFFormField& field = record.field;
    if (!readKind(ctx, widget, field.kind))
        return false;
    pdf_obj* node = fieldOf(ctx, widget);
    appendName(ctx, node, field.name);
    field.alternateName = QString::fromUtf8(pdf_to_text_string(ctx, inherited(ctx, widget, PDF_NAME(TU))));
    readFlags(ctx, widget, field);
    readLook(ctx, widget, record);
    if (field.kind == FormFieldKind::pushButton || field.kind == FormFieldKind::signature)
        return true;
    readTextStyle(ctx, document.document, widget, record);
    if (field.kind == FormFieldKind::checkBox || field.kind == FormFieldKind::radioButton) {
        field.onState = onState(ctx, widget);
        record.isInUnison = flags(ctx, widget) & PDF_BTN_FIELD_IS_RADIOS_IN_UNISON;
        pdf_obj* state = pdf_dict_get(ctx, widget, PDF_NAME(AS));
        field.isOn = field.onState == pdf_to_name(ctx, state ? state : inherited(ctx, widget, PDF_NAME(V)));
        return true;
    }
    if (field.kind != FormFieldKind::text)
        readOptions(ctx, widget, field);
    record.field.topOption = pdf_to_int(ctx, inherited(ctx, widget, PDF_NAME(TI)));
    if (field.kind == FormFieldKind::listBox)
        readOptionRows(ctx, widget, field);
    readValues(ctx, widget, record);
    return true;
}

} // namespace

bool allowsFilling(fz_context* ctx, DocumentHandle& document)
{
    const int permissions = pdf_document_permissions(ctx, document.document);
    if (!document.isOwner && !(permissions & (PDF_PERM_ANNOTATE | PDF_PERM_FORM | PDF_PERM_MODIFY)))
        return false;
    pdf_obj* root = pdf_dict_get(ctx, pdf_trailer(ctx, document.document), PDF_NAME(Root));
    pdf_obj* signature = pdf_dict_get(ctx, pdf_dict_get(ctx, root, PDF_NAME(Perms)), PDF_NAME(DocMDP));
    pdf_obj* reference = pdf_array_get(ctx, pdf_dict_get(ctx, signature, PDF_NAME(Reference)), 0);
    pdf_obj* parameters = pdf_dict_get(ctx, reference, PDF_NAME(TransformParams));
    constexpr int noChanges = 1;
    return pdf_dict_get_int(ctx, parameters, PDF_NAME(P)) != noChanges;
}

bool readField(fz_context* ctx, DocumentHandle& document, pdf_obj* widget, FieldRecord& record)
{
    bool isRead = false;
    fz_var(isRead);
    fz_try(ctx)
    {
        isRead = readWidget(ctx, document, widget, record);
    }
    fz_catch(ctx)
    {
        engine::rethrowUnlessDamage(ctx);
        isRead = false;
    }
    return isRead;
}

void readPage(fz_context* ctx, DocumentHandle& document, pdf_obj* page, int index, PageRecord& record)
{
    pdf_obj* annotations = pdf_dict_get(ctx, page, PDF_NAME(Annots));
    const std::vector<int>& places = widgetPlaces(ctx, document, annotations, index);
    const bool canFill = !places.empty() && allowsFilling(ctx, document);
    readTabOrder(ctx, document.document, page, record);
    for (const int i : places) {
        pdf_obj* widget = pdf_array_get(ctx, annotations, i);
        record.fields.emplace_back();
        if (!readField(ctx, document, widget, record.fields.back())) {
            record.fields.pop_back();
            continue;
        }
        record.fields.back().field.widget = {index, pdf_to_num(ctx, widget), i};
        record.fields.back().field.isReadOnly |= !canFill;
    }
}

void interpretValue(FieldRecord& record)
{
    PDFFormField& field = record.field;
    if (field.kind == FormFieldKind::text) {
        field.text = record.values.value(0);
        field.text.replace(QLatin1String("\r\n"), QLatin1String("\n")).replace(u'\r', u'\n');
        return;
    }
    if (field.kind != FormFieldKind::comboBox && field.kind != FormFieldKind::listBox)
        return;
    const auto isIndex = [&](int i) { return i >= 0 && i < static_cast<int>(field.options.size()); };
    // The indices tell options apart that have the same value, but writers forget to keep them up.
    const bool areIndicesRight =
        !record.indices.empty() && record.indices.size() == static_cast<std::size_t>(record.values.size()) &&
        std::all_of(record.indices.begin(), record.indices.end(), [&](int i) {
            return isIndex(i) &&
                   record.values.contains(field.options[static_cast<std::size_t>(i)].exportValue);
        });
    if (areIndicesRight) {
        field.selection = record.indices;
    } else {
        for (const QString& value : std::as_const(record.values)) {
            const auto isValue = [&](const FormFieldOption& option) { return option.exportValue == value; };
            const auto isShown = [&](const FormFieldOption& option) { return option.displayText == value; };
            auto option = std::find_if(field.options.begin(), field.options.end(), isValue);
            if (option == field.options.end())
                option = std::find_if(field.options.begin(), field.options.end(), isShown);
            if (option != field.options.end())
                field.selection.push_back(static_cast<int>(option - field.options.begin()));
        }
    }
    std::sort(field.selection.begin(), field.selection.end());
    field.selection.erase(std::unique(field.selection.begin(), field.selection.end()), field.selection.end());
    if (field.kind == FormFieldKind::comboBox) {
        field.text = field.selection.empty()
                         ? record.values.value(0)
                         : field.options[static_cast<std::size_t>(field.selection.front())].displayText;
    }
}

std::vector<PDFFormField> fieldsOf(PageRecord record, const QTransform& pageToDisplay)
{
    std::vector<QRectF> boxes;
    for (const FieldRecord& field : record.fields)
        boxes.push_back(pageToDisplay.mapRect(field.field.bounds));
    std::vector<PDFFormField> fields;
    for (const std::size_t i : tabOrder(boxes, record.order, record.isRightToLeft)) {
        interpretValue(record.fields[i]);
        fields.push_back(std::move(record.fields[i].field));
    }
    return fields;
}

} // namespace pdf::fields
