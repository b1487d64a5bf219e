// SPDX-License-Identifier: AGPL-3.0-or-later
#include <mupdf/pdf.h>

#include <initializer_list>

// The visible part of a page is its crop box within its media box (ISO 32000-1, 14.11.2). Where the two have
// nothing in common, that is nothing at all, and MuPDF shows an empty page of some size. Such a crop box is a
// mistake of the writer's, and what is on the page is shown as without it. The linker leads the questions for
// the visible part through this file (--wrap, see cmake/MuPDF.cmake), so that content, annotations, links and
// text all get one answer.

extern "C" {
void __real_pdf_page_obj_transform(fz_context* ctx, pdf_obj* page, fz_rect* box, fz_matrix* ctm);
void __wrap_pdf_page_obj_transform(fz_context* ctx, pdf_obj* page, fz_rect* box, fz_matrix* ctm);
void __wrap_pdf_page_transform(fz_context* ctx, pdf_page* page, fz_rect* box, fz_matrix* ctm);
}

namespace {

bool hasDisjointBoxes(fz_context* ctx, pdf_obj* page)
{
    const fz_rect media = pdf_to_rect(ctx, pdf_dict_get_inheritable(ctx, page, PDF_NAME(MediaBox)));
    const fz_rect crop = pdf_to_rect(ctx, pdf_dict_get_inheritable(ctx, page, PDF_NAME(CropBox)));
    return !fz_is_empty_rect(media) && !fz_is_empty_rect(crop) &&
           fz_is_empty_rect(fz_intersect_rect(media, crop));
}

} // namespace

void __wrap_pdf_page_obj_transform(fz_context* ctx, pdf_obj* page, fz_rect* box, fz_matrix* ctm)
{
    if (!hasDisjointBoxes(ctx, page)) {
        __real_pdf_page_obj_transform(ctx, page, box, ctm);
        return;
    }
    // The same page without the crop box, and without a parent to inherit one from.
    pdf_obj* uncropped = pdf_new_dict(ctx, pdf_get_bound_document(ctx, page), 3);
    fz_try(ctx)
    {
        for (pdf_obj* key : {PDF_NAME(MediaBox), PDF_NAME(Rotate), PDF_NAME(UserUnit)}) {
            if (pdf_obj* value = pdf_dict_get_inheritable(ctx, page, key))
                pdf_dict_put(ctx, uncropped, key, value);
        }
        __real_pdf_page_obj_transform(ctx, uncropped, box, ctm);
    }
    fz_always(ctx)
    {
        pdf_drop_obj(ctx, uncropped);
    }
    fz_catch(ctx)
    {
        fz_rethrow(ctx);
    }
}

void __wrap_pdf_page_transform(fz_context* ctx, pdf_page* page, fz_rect* box, fz_matrix* ctm)
{
    __wrap_pdf_page_obj_transform(ctx, page->obj, box, ctm);
}
