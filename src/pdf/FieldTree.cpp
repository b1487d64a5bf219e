// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/FieldTree.h"

#include "pdf/Limits.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace pdf::fields {
namespace {

constexpr const char* offState = "Off";

// What the fonts are that forms usually name so.
constexpr std::pair<const char*, const char*> standardFonts[] = {
    {"HeBo", "Helvetica-Bold"},
    {"HeOb", "Helvetica-Oblique"},
    {"HeBO", "Helvetica-BoldOblique"},
    {"TiRo", "Times-Roman"},
    {"TiBo", "Times-Bold"},
    {"TiIt", "Times-Italic"},
    {"TiBI", "Times-BoldItalic"},
    {"Cour", "Courier"},
    {"CoBo", "Courier-Bold"},
    {"CoOb", "Courier-Oblique"},
    {"CoBO", "Courier-BoldOblique"},
    {"ZaDb", "ZapfDingbats"},
    {"Symb", "Symbol"},
};

/// The node above, or null; broken forms name other things there.
pdf_obj* parentOf(fz_context* ctx, pdf_obj* node)
{
    pdf_obj* parent = pdf_dict_get(ctx, node, PDF_NAME(Parent));
    return pdf_is_dict(ctx, parent) && !pdf_is_stream(ctx, parent) ? parent : nullptr;
}

bool isWidget(fz_context* ctx, pdf_obj* node)
{
    return pdf_name_eq(ctx, pdf_dict_get(ctx, node, PDF_NAME(Subtype)), PDF_NAME(Widget));
}

/// True where the node or one below it is a widget.
bool hasWidget(fz_context* ctx, pdf_obj* node, int depth, int* patience)
{
    if (depth > limits::fieldTreeDepth || --*patience < 0)
        return false;
    if (isWidget(ctx, node))
        return true;
    pdf_obj* kids = pdf_dict_get(ctx, node, PDF_NAME(Kids));
    const int count = pdf_array_len(ctx, kids);
    for (int i = 0; i < count; ++i) {
        if (hasWidget(ctx, pdf_array_get(ctx, kids, i), depth + 1, patience))
            return true;
    }
    return false;
}

/// The first state in the dictionary of appearances that is not "Off", or null.
const char* stateIn(fz_context* ctx, pdf_obj* appearances)
{
    if (pdf_is_stream(ctx, appearances))
        return nullptr;
    const int count = pdf_dict_len(ctx, appearances);
    for (int i = 0; i < count; ++i) {
        const char* name = pdf_to_name(ctx, pdf_dict_get_key(ctx, appearances, i));
        if (std::strcmp(name, offState) != 0)
            return name;
    }
    return nullptr;
}

/// The dictionary under the key, made where there is none.
pdf_obj* dictionaryIn(fz_context* ctx, pdf_obj* parent, pdf_obj* key)
{
    pdf_obj* dictionary = pdf_dict_get(ctx, parent, key);
    return pdf_is_dict(ctx, dictionary) ? dictionary : pdf_dict_put_dict(ctx, parent, key, 4);
}

pdf_obj* ensureForm(fz_context* ctx, pdf_document* document)
{
    pdf_obj* root = pdf_dict_get(ctx, pdf_trailer(ctx, document), PDF_NAME(Root));
    return dictionaryIn(ctx, root, PDF_NAME(AcroForm));
}

} // namespace

pdf_obj* form(fz_context* ctx, pdf_document* document)
{
    pdf_obj* root = pdf_dict_get(ctx, pdf_trailer(ctx, document), PDF_NAME(Root));
    pdf_obj* dictionary = pdf_dict_get(ctx, root, PDF_NAME(AcroForm));
    return pdf_is_dict(ctx, dictionary) ? dictionary : nullptr;
}

bool hasFields(fz_context* ctx, pdf_document* document)
{
    return pdf_array_len(ctx, pdf_dict_get(ctx, form(ctx, document), PDF_NAME(Fields))) > 0;
}

bool isXFAOnly(fz_context* ctx, pdf_document* document)
{
    pdf_obj* dictionary = form(ctx, document);
    if (!pdf_dict_get(ctx, dictionary, PDF_NAME(XFA)))
        return false;
    pdf_obj* roots = pdf_dict_get(ctx, dictionary, PDF_NAME(Fields));
    const int count = pdf_array_len(ctx, roots);
    int patience = limits::fieldsAtATime;
    for (int i = 0; i < count; ++i) {
        if (hasWidget(ctx, pdf_array_get(ctx, roots, i), 0, &patience))
            return false;
    }
    return true;
}

pdf_obj* fieldOf(fz_context* ctx, pdf_obj* widget)
{
    pdf_obj* node = widget;
    for (int depth = 0; depth < limits::fieldTreeDepth; ++depth) {
        if (pdf_dict_get(ctx, node, PDF_NAME(T)))
            return node;
        pdf_obj* parent = parentOf(ctx, node);
        if (!parent)
            break;
        node = parent;
    }
    return widget;
}

pdf_obj* inherited(fz_context* ctx, pdf_obj* node, pdf_obj* key)
{
    for (int depth = 0; depth < limits::fieldTreeDepth && pdf_is_dict(ctx, node); ++depth) {
        if (pdf_obj* value = pdf_dict_get(ctx, node, key))
            return value;
        node = parentOf(ctx, node);
    }
    return nullptr;
}

pdf_obj* inheritedOrOfForm(fz_context* ctx, pdf_document* document, pdf_obj* node, pdf_obj* key)
{
    pdf_obj* value = inherited(ctx, node, key);
    return value ? value : pdf_dict_get(ctx, form(ctx, document), key);
}

int flags(fz_context* ctx, pdf_obj* node)
{
    return pdf_to_int(ctx, inherited(ctx, node, PDF_NAME(Ff)));
}

void appendName(fz_context* ctx, pdf_obj* field, QString& name)
{
    pdf_obj* nodes[limits::fieldTreeDepth];
    const char* parts[limits::fieldTreeDepth];
    int count = 0;
    for (pdf_obj* node = field; count < limits::fieldTreeDepth && pdf_is_dict(ctx, node);
         node = parentOf(ctx, node)) {
        nodes[count] = pdf_resolve_indirect(ctx, node);
        // Where the tree goes in circles every node is named once.
        if (std::find(nodes, nodes + count, nodes[count]) != nodes + count)
            break;
        pdf_obj* part = pdf_dict_get(ctx, node, PDF_NAME(T));
        parts[count++] = part ? pdf_to_text_string(ctx, part) : "";
    }
    while (count > 0) {
        --count;
        if (*parts[count] == '\0')
            continue;
        if (!name.isEmpty())
            name += QLatin1Char('.');
        name += QString::fromUtf8(parts[count]);
    }
}

bool readKind(fz_context* ctx, pdf_obj* node, FormFieldKind& kind)
{
    pdf_obj* type = inherited(ctx, node, PDF_NAME(FT));
    const int bits = flags(ctx, node);
    if (pdf_name_eq(ctx, type, PDF_NAME(Tx)))
        kind = FormFieldKind::text;
    else if (pdf_name_eq(ctx, type, PDF_NAME(Ch)))
        kind = bits & PDF_CH_FIELD_IS_COMBO ? FormFieldKind::comboBox : FormFieldKind::listBox;
    else if (pdf_name_eq(ctx, type, PDF_NAME(Sig)))
        kind = FormFieldKind::signature;
    else if (!pdf_name_eq(ctx, type, PDF_NAME(Btn)))
        return false;
    else if (bits & PDF_BTN_FIELD_IS_PUSHBUTTON)
        kind = FormFieldKind::pushButton;
    else
        kind = bits & PDF_BTN_FIELD_IS_RADIO ? FormFieldKind::radioButton : FormFieldKind::checkBox;
    return true;
}

const char* onState(fz_context* ctx, pdf_obj* widget)
{
    pdf_obj* appearance = pdf_dict_get(ctx, widget, PDF_NAME(AP));
    if (const char* state = stateIn(ctx, pdf_dict_get(ctx, appearance, PDF_NAME(N))))
        return state;
    if (const char* state = stateIn(ctx, pdf_dict_get(ctx, appearance, PDF_NAME(D))))
        return state;
    const char* state = pdf_dict_get_name(ctx, widget, PDF_NAME(AS));
    return *state != '\0' && std::strcmp(state, offState) != 0 ? state : "Yes";
}

pdf_obj* sharedFont(fz_context* ctx, pdf_document* document, pdf_obj* widget, const char* name)
{
    pdf_obj* fonts = pdf_dict_get(ctx, inherited(ctx, widget, PDF_NAME(DR)), PDF_NAME(Font));
    pdf_obj* font = pdf_dict_gets(ctx, fonts, name);
    if (!pdf_is_dict(ctx, font)) {
        pdf_obj* resources = pdf_dict_get(ctx, form(ctx, document), PDF_NAME(DR));
        font = pdf_dict_gets(ctx, pdf_dict_get(ctx, resources, PDF_NAME(Font)), name);
    }
    return pdf_is_dict(ctx, font) ? font : nullptr;
}

void ensureSharedFont(fz_context* ctx, pdf_document* document, pdf_obj* widget, const char* name)
{
    if (sharedFont(ctx, document, widget, name))
        return;
    const char* standard = "Helvetica";
    for (const auto& [key, value] : standardFonts) {
        if (std::strcmp(name, key) == 0)
            standard = value;
    }
    pdf_obj* resources = dictionaryIn(ctx, ensureForm(ctx, document), PDF_NAME(DR));
    pdf_obj* fonts = dictionaryIn(ctx, resources, PDF_NAME(Font));
    pdf_obj* font = pdf_add_new_dict(ctx, document, 4);
    fz_try(ctx)
    {
        pdf_dict_put(ctx, font, PDF_NAME(Type), PDF_NAME(Font));
        pdf_dict_put(ctx, font, PDF_NAME(Subtype), PDF_NAME(Type1));
        pdf_dict_put_name(ctx, font, PDF_NAME(BaseFont), standard);
        // The symbol fonts have an encoding of their own.
        if (std::strcmp(standard, "ZapfDingbats") != 0 && std::strcmp(standard, "Symbol") != 0)
            pdf_dict_put(ctx, font, PDF_NAME(Encoding), PDF_NAME(WinAnsiEncoding));
        pdf_dict_puts(ctx, fonts, name, font);
    }
    fz_always(ctx)
    {
        pdf_drop_obj(ctx, font);
    }
    fz_catch(ctx)
    {
        fz_rethrow(ctx);
    }
}

void prepareForChange(fz_context* ctx, pdf_document* document, pdf_obj* field)
{
    pdf_obj* dictionary = ensureForm(ctx, document);
    if (pdf_dict_get(ctx, dictionary, PDF_NAME(XFA))) {
        pdf_dict_del(ctx, dictionary, PDF_NAME(XFA));
        pdf_obj* root = pdf_dict_get(ctx, pdf_trailer(ctx, document), PDF_NAME(Root));
        pdf_dict_dels(ctx, root, "NeedsRendering");
    }
    pdf_obj* top = field;
    for (int depth = 0; depth < limits::fieldTreeDepth; ++depth) {
        pdf_obj* parent = parentOf(ctx, top);
        if (!parent)
            break;
        top = parent;
    }
    // A field can only be named by others when it is an object of its own.
    if (!pdf_is_indirect(ctx, top))
        return;
    pdf_obj* roots = pdf_dict_get(ctx, dictionary, PDF_NAME(Fields));
    if (!pdf_is_array(ctx, roots))
        roots = pdf_dict_put_array(ctx, dictionary, PDF_NAME(Fields), 1);
    if (!pdf_array_contains(ctx, roots, top))
        pdf_array_push(ctx, roots, top);
}

bool needsAppearances(fz_context* ctx, pdf_document* document)
{
    return pdf_to_bool(ctx, pdf_dict_gets(ctx, form(ctx, document), "NeedAppearances"));
}

} // namespace pdf::fields
