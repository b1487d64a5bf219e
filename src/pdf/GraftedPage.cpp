// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/GraftedPage.h"

namespace pdf {

pdf_obj* graftPage(fz_context* ctx, pdf_document* document, const QByteArray& file, fz_rect box)
{
    fz_stream* stream = nullptr;
    pdf_document* source = nullptr;
    fz_buffer* content = nullptr;
    pdf_obj* resources = nullptr;
    pdf_obj* result = nullptr;
    fz_var(stream);
    fz_var(source);
    fz_var(content);
    fz_var(resources);
    fz_var(result);
    fz_try(ctx)
    {
        stream = fz_open_memory(
            ctx, reinterpret_cast<const unsigned char*>(file.constData()),
            static_cast<std::size_t>(file.size()));
        source = pdf_open_document_with_stream(ctx, stream);
        pdf_obj* page = pdf_lookup_page_obj(ctx, source, 0);
        content = pdf_load_stream(ctx, pdf_dict_get(ctx, page, PDF_NAME(Contents)));
        resources = pdf_graft_object(ctx, document, pdf_dict_get_inheritable(ctx, page, PDF_NAME(Resources)));
        result = pdf_new_xobject(ctx, document, box, fz_identity, resources, content);
    }
    fz_always(ctx)
    {
        pdf_drop_obj(ctx, resources);
        fz_drop_buffer(ctx, content);
        pdf_drop_document(ctx, source);
        fz_drop_stream(ctx, stream);
    }
    fz_catch(ctx)
    {
        fz_rethrow(ctx);
    }
    return result;
}

} // namespace pdf
