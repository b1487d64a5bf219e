// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/AnnotationObject.h"

#include "pdf/GraftedPage.h"

#include <QDateTime>

#include <algorithm>
#include <cstdio>

namespace pdf::annotations {

const char* const picturePath = "AP/N";

namespace {

constexpr int isPrinted = 1 << 2;

/// The form's look for fields that have none, and the one font that every viewer has.
constexpr const char* formAppearance = "/Helv 0 Tf 0 g";

fz_rect rectOf(const QRectF& rect)
{
    return {
        static_cast<float>(rect.left()), static_cast<float>(rect.top()), static_cast<float>(rect.right()),
        static_cast<float>(rect.bottom())};
}

/// The array or dictionary under a key, made where there is none.
pdf_obj* ensureArray(fz_context* ctx, pdf_obj* owner, pdf_obj* key)
{
    pdf_obj* array = pdf_dict_get(ctx, owner, key);
    return pdf_is_array(ctx, array) ? array : pdf_dict_put_array(ctx, owner, key, 4);
}

pdf_obj* ensureDictionary(fz_context* ctx, pdf_obj* owner, pdf_obj* key)
{
    pdf_obj* dictionary = pdf_dict_get(ctx, owner, key);
    return pdf_is_dict(ctx, dictionary) ? dictionary : pdf_dict_put_dict(ctx, owner, key, 4);
}

/// Compares objects by their numbers, so that those of a list need not be read for it.
bool isSame(fz_context* ctx, pdf_obj* a, pdf_obj* b)
{
    if (pdf_is_indirect(ctx, a) && pdf_is_indirect(ctx, b))
        return pdf_to_num(ctx, a) == pdf_to_num(ctx, b);
    return a && b && pdf_resolve_indirect(ctx, a) == pdf_resolve_indirect(ctx, b);
}

void removeFrom(fz_context* ctx, pdf_obj* array, pdf_obj* object)
{
    for (int i = pdf_array_len(ctx, array) - 1; i >= 0; --i) {
        if (isSame(ctx, pdf_array_get(ctx, array, i), object))
            pdf_array_delete(ctx, array, i);
    }
}

pdf_obj* ensureForm(fz_context* ctx, pdf_document* document)
{
    pdf_obj* root = pdf_dict_get(ctx, pdf_trailer(ctx, document), PDF_NAME(Root));
    pdf_obj* form = ensureDictionary(ctx, root, PDF_NAME(AcroForm));
    if (!pdf_dict_get(ctx, form, PDF_NAME(DA)))
        pdf_dict_put_text_string(ctx, form, PDF_NAME(DA), formAppearance);
    pdf_obj* resources = ensureDictionary(ctx, form, PDF_NAME(DR));
    pdf_obj* fonts = ensureDictionary(ctx, resources, PDF_NAME(Font));
    if (!pdf_dict_gets(ctx, fonts, "Helv")) {
        pdf_obj* font = pdf_dict_puts_dict(ctx, fonts, "Helv", 4);
        pdf_dict_put(ctx, font, PDF_NAME(Type), PDF_NAME(Font));
        pdf_dict_put(ctx, font, PDF_NAME(Subtype), PDF_NAME(Type1));
        pdf_dict_put_name(ctx, font, PDF_NAME(BaseFont), "Helvetica");
        pdf_dict_put(ctx, font, PDF_NAME(Encoding), PDF_NAME(WinAnsiEncoding));
    }
    return form;
}

/// The number in a name like those that are given here, or 0.
int numberIn(const char* name)
{
    // Larger ones are left to others, so that the next is a number still.
    constexpr int largest = 1'000'000'000;
    int number = 0;
    char rest = 0;
    const bool isNumbered = std::sscanf(name, "Text%9d%c", &number, &rest) == 1;
    return isNumbered && number > 0 && number < largest ? number : 0;
}

/// Makes the annotation a text field with a name that no field of the form has.
void makeField(fz_context* ctx, pdf_document* document, pdf_obj* annotation)
{
    pdf_obj* fields = ensureArray(ctx, ensureForm(ctx, document), PDF_NAME(Fields));
    const int count = pdf_array_len(ctx, fields);
    int number = count;
    for (int i = 0; i < count; ++i) {
        const char* name = pdf_dict_get_text_string(ctx, pdf_array_get(ctx, fields, i), PDF_NAME(T));
        number = std::max(number, numberIn(name));
    }
    char name[32];
    std::snprintf(name, sizeof name, "Text%d", number + 1);
    pdf_dict_put(ctx, annotation, PDF_NAME(FT), PDF_NAME(Tx));
    pdf_dict_put_text_string(ctx, annotation, PDF_NAME(T), name);
}

void leaveForm(fz_context* ctx, pdf_document* document, pdf_obj* annotation)
{
    removeFrom(ctx, pdf_dict_getp(ctx, pdf_trailer(ctx, document), "Root/AcroForm/Fields"), annotation);
    pdf_obj* parent = pdf_dict_get(ctx, annotation, PDF_NAME(Parent));
    removeFrom(ctx, pdf_dict_get(ctx, parent, PDF_NAME(Kids)), annotation);
}

void writeField(fz_context* ctx, pdf_obj* annotation, const Content& content)
{
    if (content.value)
        pdf_dict_put_text_string(ctx, annotation, PDF_NAME(V), content.value->constData());
    pdf_dict_put_int(ctx, annotation, PDF_NAME(Ff), content.isReadOnly ? fieldIsReadOnly : 0);
    pdf_dict_del(ctx, annotation, PDF_NAME(MK));
    if (content.background) {
        pdf_obj* look = pdf_dict_put_dict(ctx, annotation, PDF_NAME(MK), 1);
        pdf_obj* color = pdf_dict_put_array(ctx, look, PDF_NAME(BG), 3);
        pdf_array_push_real(ctx, color, content.background->redF());
        pdf_array_push_real(ctx, color, content.background->greenF());
        pdf_array_push_real(ctx, color, content.background->blueF());
    }
}

} // namespace

void deleteObjects(fz_context* ctx, pdf_document* document, ObjectRange& range)
{
    for (; range.first < range.end; ++range.first)
        pdf_delete_object(ctx, document, range.first);
}

void writePicture(
    fz_context* ctx, pdf_document* document, pdf_obj* annotation, const DrawnPage& picture,
    const QSizeF& size)
{
    const fz_rect box = {0, 0, static_cast<float>(size.width()), static_cast<float>(size.height())};
    pdf_obj* stream = graftPage(ctx, document, picture.file, box);
    fz_try(ctx)
    {
        pdf_obj* appearances = pdf_dict_put_dict(ctx, annotation, PDF_NAME(AP), 1);
        pdf_dict_put(ctx, appearances, PDF_NAME(N), stream);
    }
    fz_always(ctx)
    {
        pdf_drop_obj(ctx, stream);
    }
    fz_catch(ctx)
    {
        fz_rethrow(ctx);
    }
}

pdf_obj* make(fz_context* ctx, pdf_document* document, pdf_obj* page, const Content& content)
{
    pdf_obj* annotation = pdf_add_new_dict(ctx, document, 12);
    fz_try(ctx)
    {
        pdf_dict_put(ctx, annotation, PDF_NAME(Type), PDF_NAME(Annot));
        pdf_dict_put_name(ctx, annotation, PDF_NAME(Subtype), content.subtype.constData());
        pdf_dict_put(ctx, annotation, PDF_NAME(P), page);
        pdf_dict_put_int(ctx, annotation, PDF_NAME(F), isPrinted);
        if (content.isField)
            makeField(ctx, document, annotation);
    }
    fz_catch(ctx)
    {
        pdf_delete_object(ctx, document, pdf_to_num(ctx, annotation));
        pdf_drop_obj(ctx, annotation);
        fz_rethrow(ctx);
    }
    return annotation;
}

void attach(
    fz_context* ctx, pdf_document* document, pdf_obj* page, pdf_obj* annotation, const Content& content)
{
    fz_try(ctx)
    {
        if (content.isField)
            pdf_array_push(ctx, ensureArray(ctx, ensureForm(ctx, document), PDF_NAME(Fields)), annotation);
        pdf_array_push(ctx, ensureArray(ctx, page, PDF_NAME(Annots)), annotation);
    }
    fz_catch(ctx)
    {
        leaveForm(ctx, document, annotation);
        fz_rethrow(ctx);
    }
}

void writeBounds(fz_context* ctx, pdf_obj* annotation, const QRectF& bounds)
{
    pdf_dict_put_rect(ctx, annotation, PDF_NAME(Rect), rectOf(bounds));
    pdf_dict_put_date(ctx, annotation, PDF_NAME(M), QDateTime::currentSecsSinceEpoch());
}

void writeContents(fz_context* ctx, pdf_obj* annotation, const QByteArray& contents)
{
    pdf_dict_put_text_string(ctx, annotation, PDF_NAME(Contents), contents.constData());
}

void write(fz_context* ctx, pdf_obj* annotation, const Content& content)
{
    writeBounds(ctx, annotation, content.bounds);
    if (!content.contents.isEmpty())
        writeContents(ctx, annotation, content.contents);
    else
        pdf_dict_del(ctx, annotation, PDF_NAME(Contents));
    if (!content.defaultAppearance.isEmpty()) {
        pdf_dict_put_text_string(ctx, annotation, PDF_NAME(DA), content.defaultAppearance.constData());
        pdf_dict_put_int(ctx, annotation, PDF_NAME(Q), content.quadding);
    }
    pdf_obj* border = pdf_dict_put_dict(ctx, annotation, PDF_NAME(BS), 1);
    pdf_dict_put_int(ctx, border, PDF_NAME(W), content.borderWidth.value_or(0));
    if (content.isField)
        writeField(ctx, annotation, content);
}

void remove(
    fz_context* ctx, pdf_document* document, pdf_obj* page, pdf_obj* annotation,
    const ObjectRange& appearance)
{
    pdf_obj* annotations = pdf_dict_get(ctx, page, PDF_NAME(Annots));
    removeFrom(ctx, annotations, pdf_dict_get(ctx, annotation, PDF_NAME(Popup)));
    removeFrom(ctx, annotations, annotation);
    leaveForm(ctx, document, annotation);
    ObjectRange range = appearance;
    deleteObjects(ctx, document, range);
    if (pdf_is_indirect(ctx, annotation))
        pdf_delete_object(ctx, document, pdf_to_num(ctx, annotation));
}

QRectF bounds(fz_context* ctx, pdf_obj* annotation)
{
    const fz_rect rect = pdf_dict_get_rect(ctx, annotation, PDF_NAME(Rect));
    return QRectF(QPointF(rect.x0, rect.y0), QPointF(rect.x1, rect.y1)).normalized();
}

} // namespace pdf::annotations
