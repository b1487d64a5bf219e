// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/ObjectCopier.h"

#include "pdf/Engine.h"
#include "pdf/MuPDFVersion.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace pdf {
namespace {

/// How deep arrays and dictionaries may nest within one object.
constexpr int deepestNesting = 500;

constexpr std::array<std::string_view, 4> unusedKeys = {
    "Metadata", "PieceInfo", "StructParent", "StructParents"};

bool isPageOrCatalog(fz_context* ctx, pdf_obj* object)
{
    pdf_obj* type = pdf_dict_get(ctx, object, PDF_NAME(Type));
    return pdf_name_eq(ctx, type, PDF_NAME(Page)) || pdf_name_eq(ctx, type, PDF_NAME(Pages)) ||
           pdf_name_eq(ctx, type, PDF_NAME(Catalog));
}

/// What a print has no use for.
bool isLeftOut(fz_context* ctx, pdf_obj* key)
{
    const std::string_view name = pdf_to_name(ctx, key);
    return std::find(unusedKeys.begin(), unusedKeys.end(), name) != unusedKeys.end();
}

bool isLocal(const pdf_document* document, int number)
{
    const pdf_xref* local = document->local_xref_nesting > 0 ? document->local_xref : nullptr;
    for (const pdf_xref_subsec* part = local ? local->subsec : nullptr; part; part = part->next) {
        if (number >= part->start && number < part->start + part->len)
            return part->table[number - part->start].type != 0;
    }
    return false;
}

} // namespace

ObjectCopier::ObjectCopier(pdf_document* document, PrintFile& file)
    : m_document(document)
    , m_file(file)
{}

void ObjectCopier::forgetLocalObjects()
{
    for (const int number : m_localObjects)
        m_copies[static_cast<std::size_t>(number)] = 0;
    m_localObjects.clear();
}

int ObjectCopier::copyOf(fz_context* ctx, pdf_obj* reference, bool isForm)
{
    const int source = pdf_to_num(ctx, reference);
    const auto index = static_cast<std::size_t>(source);
    engine::translated(ctx, [&] {
        if (index >= m_copies.size())
            m_copies.resize(index + 1);
        if (m_copies[index] != 0)
            return;
        if (isLocal(m_document, source))
            m_localObjects.push_back(source);
        const int copy = m_file.newObject();
        m_pending.push_back({source, copy, isForm});
        m_copies[index] = copy;
    });
    return m_copies[index];
}

void ObjectCopier::print(fz_context* ctx, fz_output* out, pdf_obj* object, int depth)
{
    if (depth > deepestNesting)
        fz_throw(ctx, FZ_ERROR_GENERIC, "an object is nested too deeply");
    if (pdf_is_indirect(ctx, object)) {
        fz_write_printf(ctx, out, "%d 0 R", copyOf(ctx, object));
    } else if (pdf_is_dict(ctx, object)) {
        fz_write_string(ctx, out, "<<");
        const int count = pdf_dict_len(ctx, object);
        for (int i = 0; i < count; ++i) {
            pdf_obj* key = pdf_dict_get_key(ctx, object, i);
            if (isLeftOut(ctx, key))
                continue;
            pdf_print_obj(ctx, out, key, 1, 0);
            fz_write_byte(ctx, out, ' ');
            print(ctx, out, pdf_dict_get_val(ctx, object, i), depth + 1);
        }
        fz_write_string(ctx, out, ">>");
    } else if (pdf_is_array(ctx, object)) {
        fz_write_byte(ctx, out, '[');
        const int count = pdf_array_len(ctx, object);
        for (int i = 0; i < count; ++i) {
            print(ctx, out, pdf_array_get(ctx, object, i), depth + 1);
            fz_write_byte(ctx, out, ' ');
        }
        fz_write_byte(ctx, out, ']');
    } else {
        pdf_print_obj(ctx, out, object, 1, 0);
    }
}

void ObjectCopier::printStream(
    fz_context* ctx, fz_output* out, pdf_obj* dictionary, bool isForm, std::size_t size)
{
    fz_write_string(ctx, out, "<<");
    const int count = pdf_dict_len(ctx, dictionary);
    for (int i = 0; i < count; ++i) {
        pdf_obj* key = pdf_dict_get_key(ctx, dictionary, i);
        const bool isKind = pdf_name_eq(ctx, key, PDF_NAME(Type)) || pdf_name_eq(ctx, key, PDF_NAME(Subtype));
        if (pdf_name_eq(ctx, key, PDF_NAME(Length)) || (isForm && isKind) || isLeftOut(ctx, key))
            continue;
        pdf_print_obj(ctx, out, key, 1, 0);
        fz_write_byte(ctx, out, ' ');
        print(ctx, out, pdf_dict_get_val(ctx, dictionary, i), 1);
    }
    if (isForm)
        fz_write_string(ctx, out, "/Type/XObject/Subtype/Form");
    fz_write_printf(ctx, out, "/Length %d>>\nstream\n", static_cast<int>(size));
}

void ObjectCopier::write(fz_context* ctx, const Pending& pending)
{
    pdf_obj* object = nullptr;
    fz_buffer* text = nullptr;
    fz_buffer* stream = nullptr;
    fz_output* out = nullptr;
    fz_var(object);
    fz_var(text);
    fz_var(stream);
    fz_var(out);
    fz_try(ctx)
    {
        object = pdf_load_object(ctx, m_document, pending.source);
        text = fz_new_buffer(ctx, 512);
        out = fz_new_output_with_buffer(ctx, text);
        unsigned char* data = nullptr;
        std::size_t size = 0;
        if (pdf_obj_num_is_stream(ctx, m_document, pending.source)) {
            stream = pdf_load_raw_stream_number(ctx, m_document, pending.source);
            size = fz_buffer_storage(ctx, stream, &data);
            printStream(ctx, out, object, pending.isForm, size);
        } else if (isPageOrCatalog(ctx, object)) {
            fz_write_string(ctx, out, "null");
        } else {
            print(ctx, out, object, 0);
        }
        fz_close_output(ctx, out);

        // From where the object has begun nothing throws, so it is written whole or not at all.
        unsigned char* head = nullptr;
        const std::size_t headSize = fz_buffer_storage(ctx, text, &head);
        engine::translated(ctx, [&] { m_file.beginObject(pending.copy); });
        m_file.append(reinterpret_cast<const char*>(head), headSize);
        if (stream) {
            m_file.append(reinterpret_cast<const char*>(data), size);
            m_file.append("\nendstream", 10);
        }
        m_file.endObject();
    }
    fz_always(ctx)
    {
        fz_drop_output(ctx, out);
        fz_drop_buffer(ctx, text);
        fz_drop_buffer(ctx, stream);
        pdf_drop_obj(ctx, object);
    }
    fz_catch(ctx)
    {
        fz_rethrow(ctx);
    }
}

void ObjectCopier::writePending(fz_context* ctx)
{
    while (!m_pending.empty()) {
        const Pending pending = m_pending.back();
        m_pending.pop_back();
        fz_try(ctx)
        {
            write(ctx, pending);
        }
        fz_catch(ctx)
        {
            engine::rethrowUnlessDamage(ctx);
        }
    }
}

} // namespace pdf
