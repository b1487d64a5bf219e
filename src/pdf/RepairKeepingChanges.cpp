// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/MuPDFVersion.h"

#include <mupdf/pdf.h>

#include <utility>

// MuPDF repairs a document when it first comes upon damage, which may be long after the document was changed,
// and builds a new cross-reference table from the file for that. It then forgets the changes; and where the
// repair does not come to its end, because the operation that needed it was stopped, it forgets everything.
// The linker leads its calls to the repair through this file (--wrap, see cmake/MuPDF.cmake), which brings
// the changes over to the new table, or puts the old table back.

extern "C" {
void __real_pdf_repair_xref(fz_context* ctx, pdf_document* document);
void __wrap_pdf_repair_xref(fz_context* ctx, pdf_document* document);
}

namespace {

void restore(fz_context* ctx, pdf_document* document, int number, const pdf_xref_entry& change)
{
    pdf_xref_entry* entry = pdf_get_incremental_xref_entry(ctx, document, number);
    pdf_drop_obj(ctx, entry->obj);
    fz_drop_buffer(ctx, entry->stm_buf);
    *entry = change;
    pdf_keep_obj(ctx, entry->obj);
    fz_keep_buffer(ctx, entry->stm_buf);
}

void restore(fz_context* ctx, pdf_document* document, const pdf_xref& changes)
{
    for (const pdf_xref_subsec* part = changes.subsec; part; part = part->next) {
        for (int i = 0; i < part->len; ++i) {
            if (part->table[i].type != 0)
                restore(ctx, document, part->start + i, part->table[i]);
        }
    }
}

bool wasStopped(fz_context* ctx)
{
    const int code = fz_caught(ctx);
    return code == FZ_ERROR_MEMORY || code == FZ_ERROR_ABORT || code == FZ_ERROR_TRYLATER;
}

} // namespace

void __wrap_pdf_repair_xref(fz_context* ctx, pdf_document* document)
{
    pdf_xref* const oldSections = document->xref_sections;
    const int changedSections = document->num_incremental_sections;
    const auto oldStart = document->startxref;
    fz_try(ctx)
    {
        __real_pdf_repair_xref(ctx, document);
    }
    fz_catch(ctx)
    {
        if (document->saved_xref_sections == oldSections) {
            std::swap(document->xref_sections, document->saved_xref_sections);
            std::swap(document->num_xref_sections, document->saved_num_xref_sections);
            document->num_incremental_sections = changedSections;
            document->startxref = oldStart;
            document->repair_in_progress = 0;
            // Another operation may have the time for it.
            if (wasStopped(ctx))
                document->repair_attempted = 0;
        }
        fz_rethrow(ctx);
    }
    // The old sections are kept as long as the document, the newest first.
    for (int i = changedSections - 1; i >= 0; --i)
        restore(ctx, document, document->saved_xref_sections[i]);
}
