// SPDX-License-Identifier: AGPL-3.0-or-later
#include <mupdf/pdf.h>

// What MuPDF has made of a document's objects, such as shadings, it keeps in one store for all open
// documents, and finds it again by comparing the objects. Two that are equal by their text mean different
// things where they come from different documents; and comparing them may look up an object in a document
// that does not have it, which takes memory while the store is locked, and waits for that lock for ever. The
// linker leads the comparisons through this file (--wrap, see cmake/MuPDF.cmake), where objects of two
// documents are never equal.

extern "C" {
int __real_pdf_objcmp(fz_context* ctx, pdf_obj* a, pdf_obj* b);
int __wrap_pdf_objcmp(fz_context* ctx, pdf_obj* a, pdf_obj* b);

int __wrap_pdf_objcmp(fz_context* ctx, pdf_obj* a, pdf_obj* b)
{
    if (pdf_get_bound_document(ctx, a) != pdf_get_bound_document(ctx, b))
        return 1;
    return __real_pdf_objcmp(ctx, a, b);
}
}
