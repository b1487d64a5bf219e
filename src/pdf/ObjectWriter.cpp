// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/ObjectWriter.h"

#include "pdf/Engine.h"
#include "pdf/MuPDFVersion.h"

#include <QRandomGenerator>

#include <algorithm>
#include <array>

namespace pdf {
namespace {

/// How deep arrays and dictionaries may nest within one object.
constexpr int deepestNesting = 500;

/// An entry of a cross-reference table has ten digits for the offset.
constexpr std::int64_t largestTableOffset = 9'999'999'999;

/// What stands in a trailer for its own section only.
constexpr std::array sectionKeys = {"DecodeParms", "Filter", "Index", "Length", "Prev",
                                    "Size",        "Type",   "W",     "XRefStm"};

/// What a trailer says about the document.
constexpr std::array documentKeys = {"Root", "Info", "Encrypt", "ID"};

template <typename Value>
void append(fz_context* ctx, std::vector<Value>& values, const Value& value)
{
    engine::translated(ctx, [&] { values.push_back(value); });
}

void writeBytes(fz_context* ctx, void* out, const unsigned char* data, std::size_t size)
{
    fz_write_data(ctx, static_cast<fz_output*>(out), data, size);
}

/// The object's first entry in the sections from one to another, or null.
const pdf_xref_entry* entryIn(const pdf_document* document, int number, int begin, int end)
{
    for (int i = begin; i < end; ++i) {
        for (const pdf_xref_subsec* part = document->xref_sections[i].subsec; part; part = part->next) {
            if (number < part->start || number >= part->start + part->len)
                continue;
            const pdf_xref_entry* entry = &part->table[number - part->start];
            if (entry->type != 0)
                return entry;
        }
    }
    return nullptr;
}

/// The entry of an object that was changed since the file was read, or null.
const pdf_xref_entry* changedEntry(const pdf_document* document, int number)
{
    return entryIn(document, number, 0, document->num_incremental_sections);
}

/// Where the file has the object in a stream of objects, which has no generations, MuPDF takes its place in
/// there for one.
bool wasInObjectStream(const pdf_document* document, int number)
{
    const pdf_xref_entry* entry =
        entryIn(document, number, document->num_incremental_sections, document->num_xref_sections);
    return entry && entry->type == 'o';
}

bool hasCrossReferenceStream(fz_context* ctx, pdf_document* document)
{
    return pdf_name_eq(ctx, pdf_dict_gets(ctx, pdf_trailer(ctx, document), "Type"), PDF_NAME(XRef));
}

bool isFileStructure(fz_context* ctx, pdf_obj* object)
{
    pdf_obj* type = pdf_dict_get(ctx, object, PDF_NAME(Type));
    return pdf_name_eq(ctx, type, PDF_NAME(ObjStm)) || pdf_name_eq(ctx, type, PDF_NAME(XRef));
}

/// MuPDF encrypts streams as it does strings; a document may have other ideas.
void requireOneCryptFilter(fz_context* ctx, pdf_document* document)
{
    pdf_obj* encrypt = pdf_dict_get(ctx, pdf_trailer(ctx, document), PDF_NAME(Encrypt));
    if (pdf_dict_get_int(ctx, encrypt, PDF_NAME(V)) < 4)
        return;
    pdf_obj* streams = pdf_dict_get(ctx, encrypt, PDF_NAME(StmF));
    pdf_obj* strings = pdf_dict_get(ctx, encrypt, PDF_NAME(StrF));
    if (pdf_objcmp(ctx, streams, strings) != 0)
        fz_throw(ctx, FZ_ERROR_GENERIC, "the document encrypts its streams in another way than its strings");
}

/// The first part of a document's identity stays, the second changes with every write.
void renewIdentity(fz_context* ctx, pdf_document* document, pdf_obj* trailer)
{
    pdf_obj* first = pdf_array_get(ctx, pdf_dict_get(ctx, trailer, PDF_NAME(ID)), 0);
    if (!first)
        return;
    std::array<quint32, 4> random;
    QRandomGenerator::system()->generate(random.begin(), random.end());
    pdf_obj* identity = pdf_new_array(ctx, document, 2);
    fz_try(ctx)
    {
        pdf_array_push(ctx, identity, first);
        pdf_array_push_string(ctx, identity, reinterpret_cast<const char*>(random.data()), sizeof random);
        pdf_dict_put(ctx, trailer, PDF_NAME(ID), identity);
    }
    fz_always(ctx)
    {
        pdf_drop_obj(ctx, identity);
    }
    fz_catch(ctx)
    {
        fz_rethrow(ctx);
    }
}

} // namespace

ObjectWriter::ObjectWriter(pdf_document* document)
    : m_document(document)
{}

bool ObjectWriter::canUpdate(pdf_document* document)
{
    return document->startxref > 0;
}

void ObjectWriter::writeUpdate(fz_context* ctx, fz_output* out)
{
    m_out = out;
    collectChanges(ctx);
    if (m_entries.empty())
        return;
    requireOneCryptFilter(ctx, m_document);
    // The file's last line may have no end.
    fz_write_string(ctx, m_out, "\n");
    writeObjects(ctx, false);

    pdf_obj* trailer = newTrailer(ctx, true);
    fz_try(ctx)
    {
        pdf_dict_put_int(ctx, trailer, PDF_NAME(Prev), m_document->startxref);
        if (hasCrossReferenceStream(ctx, m_document))
            writeCrossReferenceStream(ctx, trailer);
        else
            writeTable(ctx, trailer);
    }
    fz_always(ctx)
    {
        pdf_drop_obj(ctx, trailer);
    }
    fz_catch(ctx)
    {
        fz_rethrow(ctx);
    }
}

void ObjectWriter::writeDocument(fz_context* ctx, fz_output* out)
{
    m_out = out;
    requireOneCryptFilter(ctx, m_document);
    collectReachable(ctx);
    const int version = pdf_version(ctx, m_document);
    // The second line tells programs that transfer files that this one is not text.
    fz_write_printf(ctx, m_out, "%%PDF-%d.%d\n%%\xE2\xE3\xCF\xD3\n", version / 10, version % 10);
    writeObjects(ctx, true);
    fillGaps(ctx);

    pdf_obj* trailer = newTrailer(ctx, false);
    fz_try(ctx)
    {
        writeTable(ctx, trailer);
    }
    fz_always(ctx)
    {
        pdf_drop_obj(ctx, trailer);
    }
    fz_catch(ctx)
    {
        fz_rethrow(ctx);
    }
}

void ObjectWriter::collectChanges(fz_context* ctx)
{
    const int count = pdf_xref_len(ctx, m_document);
    for (int number = 1; number < count; ++number) {
        const pdf_xref_entry* entry = changedEntry(m_document, number);
        if (!entry)
            continue;
        const int generation = wasInObjectStream(m_document, number) ? 0 : entry->gen;
        append(ctx, m_entries, {number, generation, entry->type == 'f'});
    }
}

void ObjectWriter::collectReachable(fz_context* ctx)
{
    const int count = pdf_xref_len(ctx, m_document);
    for (int number = 0; number < count; ++number)
        append(ctx, m_isReached, false);
    for (const char* key : documentKeys)
        collectReferences(ctx, pdf_dict_gets(ctx, pdf_trailer(ctx, m_document), key), 0);
    while (!m_pending.empty()) {
        const int number = m_pending.back();
        m_pending.pop_back();
        pdf_obj* object = nullptr;
        fz_var(object);
        fz_try(ctx)
        {
            object = pdf_load_object(ctx, m_document, number);
            const pdf_xref_entry* entry = pdf_get_xref_entry_no_null(ctx, m_document, number);
            if (!pdf_is_null(ctx, object) && !isFileStructure(ctx, object))
                append(ctx, m_entries, {number, entry->type == 'n' ? entry->gen : 0, false});
            collectReferences(ctx, object, 0);
        }
        fz_always(ctx)
        {
            pdf_drop_obj(ctx, object);
        }
        fz_catch(ctx)
        {
            engine::rethrowUnlessDamage(ctx);
        }
    }
    sortEntries();
}

void ObjectWriter::sortEntries()
{
    std::sort(m_entries.begin(), m_entries.end(), [](const Entry& a, const Entry& b) {
        return a.number < b.number;
    });
}

void ObjectWriter::collectReferences(fz_context* ctx, pdf_obj* object, int depth)
{
    if (depth > deepestNesting)
        fz_throw(ctx, FZ_ERROR_GENERIC, "an object is nested too deeply");
    if (pdf_is_indirect(ctx, object)) {
        const auto number = static_cast<std::size_t>(pdf_to_num(ctx, object));
        if (number > 0 && number < m_isReached.size() && !m_isReached[number]) {
            m_isReached[number] = true;
            append(ctx, m_pending, static_cast<int>(number));
        }
    } else if (pdf_is_dict(ctx, object)) {
        const int count = pdf_dict_len(ctx, object);
        for (int i = 0; i < count; ++i)
            collectReferences(ctx, pdf_dict_get_val(ctx, object, i), depth + 1);
    } else if (pdf_is_array(ctx, object)) {
        const int count = pdf_array_len(ctx, object);
        for (int i = 0; i < count; ++i)
            collectReferences(ctx, pdf_array_get(ctx, object, i), depth + 1);
    }
}

void ObjectWriter::writeObjects(fz_context* ctx, bool leavesOutDamage)
{
    for (Entry& entry : m_entries) {
        if (entry.isFree)
            continue;
        pdf_obj* object = nullptr;
        fz_var(object);
        fz_try(ctx)
        {
            object = pdf_load_object(ctx, m_document, entry.number);
            writeObject(ctx, entry, object);
        }
        fz_always(ctx)
        {
            pdf_drop_obj(ctx, object);
        }
        fz_catch(ctx)
        {
            if (!leavesOutDamage)
                fz_rethrow(ctx);
            engine::rethrowUnlessDamage(ctx);
            entry.isFree = true;
        }
    }
}

void ObjectWriter::writeObject(fz_context* ctx, Entry& entry, pdf_obj* object)
{
    pdf_obj* encrypt = pdf_dict_get(ctx, pdf_trailer(ctx, m_document), PDF_NAME(Encrypt));
    pdf_crypt* crypt = pdf_to_num(ctx, encrypt) == entry.number ? nullptr : m_document->crypt;
    if (pdf_obj_num_is_stream(ctx, m_document, entry.number)) {
        writeStream(ctx, entry, object, crypt);
        return;
    }
    entry.offset = fz_tell_output(ctx, m_out);
    fz_write_printf(ctx, m_out, "%d %d obj\n", entry.number, entry.generation);
    pdf_print_encrypted_obj(ctx, m_out, object, 1, 0, crypt, entry.number, entry.generation);
    fz_write_string(ctx, m_out, "\nendobj\n");
}

void ObjectWriter::writeStream(fz_context* ctx, Entry& entry, pdf_obj* dictionary, pdf_crypt* crypt)
{
    fz_buffer* buffer = pdf_load_raw_stream_number(ctx, m_document, entry.number);
    pdf_obj* copy = nullptr;
    fz_var(copy);
    fz_try(ctx)
    {
        unsigned char* data = nullptr;
        const std::size_t size = fz_buffer_storage(ctx, buffer, &data);
        const std::size_t writtenSize =
            crypt ? pdf_encrypted_len(ctx, crypt, entry.number, entry.generation, size) : size;
        copy = pdf_copy_dict(ctx, dictionary);
        pdf_dict_put_int(ctx, copy, PDF_NAME(Length), static_cast<std::int64_t>(writtenSize));

        entry.offset = fz_tell_output(ctx, m_out);
        fz_write_printf(ctx, m_out, "%d %d obj\n", entry.number, entry.generation);
        pdf_print_encrypted_obj(ctx, m_out, copy, 1, 0, crypt, entry.number, entry.generation);
        fz_write_string(ctx, m_out, "\nstream\n");
        pdf_encrypt_data(ctx, crypt, entry.number, entry.generation, writeBytes, m_out, data, size);
        fz_write_string(ctx, m_out, "\nendstream\nendobj\n");
    }
    fz_always(ctx)
    {
        pdf_drop_obj(ctx, copy);
        fz_drop_buffer(ctx, buffer);
    }
    fz_catch(ctx)
    {
        fz_rethrow(ctx);
    }
}

/// A file's only table must say something about every number.
void ObjectWriter::fillGaps(fz_context* ctx)
{
    const std::size_t count = m_entries.size();
    int next = 1;
    for (std::size_t i = 0; i < count; ++i) {
        for (; next < m_entries[i].number; ++next)
            append(ctx, m_entries, {next, 0, true});
        next = m_entries[i].number + 1;
    }
    sortEntries();
}

pdf_obj* ObjectWriter::newTrailer(fz_context* ctx, bool keepsUnknownKeys)
{
    pdf_obj* old = pdf_trailer(ctx, m_document);
    pdf_obj* trailer = keepsUnknownKeys ? pdf_copy_dict(ctx, old) : pdf_new_dict(ctx, m_document, 5);
    fz_try(ctx)
    {
        for (const char* key : sectionKeys)
            pdf_dict_dels(ctx, trailer, key);
        for (const char* key : documentKeys) {
            if (pdf_obj* value = pdf_dict_gets(ctx, old, key))
                pdf_dict_puts(ctx, trailer, key, value);
        }
        renewIdentity(ctx, m_document, trailer);
        pdf_dict_put_int(ctx, trailer, PDF_NAME(Size), pdf_xref_len(ctx, m_document));
    }
    fz_catch(ctx)
    {
        pdf_drop_obj(ctx, trailer);
        fz_rethrow(ctx);
    }
    return trailer;
}

/// The end of the run of consecutive numbers that starts at an index.
std::size_t ObjectWriter::endOfRun(std::size_t start) const
{
    std::size_t end = start + 1;
    while (end < m_entries.size() && m_entries[end].number == m_entries[end - 1].number + 1)
        ++end;
    return end;
}

void ObjectWriter::writeTable(fz_context* ctx, pdf_obj* trailer)
{
    // Free entries lead back to number 0, the head of their list, and are not for use again.
    append(ctx, m_entries, {0, 0, true});
    sortEntries();
    const std::int64_t start = fz_tell_output(ctx, m_out);
    if (start > largestTableOffset)
        fz_throw(ctx, FZ_ERROR_GENERIC, "the file would be too big for its kind of cross-reference table");
    fz_write_string(ctx, m_out, "xref\n");
    for (std::size_t i = 0; i < m_entries.size();) {
        const std::size_t end = endOfRun(i);
        fz_write_printf(ctx, m_out, "%d %d\n", m_entries[i].number, static_cast<int>(end - i));
        for (; i < end; ++i) {
            const Entry& entry = m_entries[i];
            if (entry.isFree)
                fz_write_string(ctx, m_out, "0000000000 65535 f \n");
            else
                fz_write_printf(ctx, m_out, "%010lu %05d n \n", entry.offset, entry.generation);
        }
    }
    fz_write_string(ctx, m_out, "trailer\n");
    pdf_print_obj(ctx, m_out, trailer, 1, 0);
    fz_write_printf(ctx, m_out, "\nstartxref\n%lu\n%%%%EOF\n", start);
}

void ObjectWriter::writeCrossReferenceStream(fz_context* ctx, pdf_obj* trailer)
{
    const std::int64_t start = fz_tell_output(ctx, m_out);
    // The stream is an object itself. The document in memory does not know of it.
    const int number = pdf_xref_len(ctx, m_document);
    append(ctx, m_entries, {number, 0, false, start});
    pdf_dict_put(ctx, trailer, PDF_NAME(Type), PDF_NAME(XRef));
    pdf_dict_put_int(ctx, trailer, PDF_NAME(Size), number + 1);
    pdf_obj* widths = pdf_dict_put_array(ctx, trailer, PDF_NAME(W), 3);
    pdf_array_push_int(ctx, widths, 1);
    pdf_array_push_int(ctx, widths, 8);
    pdf_array_push_int(ctx, widths, 2);
    pdf_obj* index = pdf_dict_put_array(ctx, trailer, PDF_NAME(Index), 2);
    for (std::size_t i = 0; i < m_entries.size(); i = endOfRun(i)) {
        pdf_array_push_int(ctx, index, m_entries[i].number);
        pdf_array_push_int(ctx, index, static_cast<std::int64_t>(endOfRun(i) - i));
    }
    fz_buffer* table = fz_new_buffer(ctx, m_entries.size() * 11);
    fz_try(ctx)
    {
        for (const Entry& entry : m_entries) {
            const std::int64_t offset = entry.isFree ? 0 : entry.offset;
            fz_append_byte(ctx, table, entry.isFree ? 0 : 1);
            fz_append_int32_be(ctx, table, static_cast<int>(offset >> 32));
            fz_append_int32_be(ctx, table, static_cast<int>(offset));
            fz_append_int16_be(ctx, table, entry.isFree ? 65535 : entry.generation);
        }
        unsigned char* data = nullptr;
        const std::size_t size = fz_buffer_storage(ctx, table, &data);
        pdf_dict_put_int(ctx, trailer, PDF_NAME(Length), static_cast<std::int64_t>(size));
        fz_write_printf(ctx, m_out, "%d 0 obj\n", number);
        pdf_print_obj(ctx, m_out, trailer, 1, 0);
        fz_write_string(ctx, m_out, "\nstream\n");
        fz_write_data(ctx, m_out, data, size);
        fz_write_printf(ctx, m_out, "\nendstream\nendobj\nstartxref\n%lu\n%%%%EOF\n", start);
    }
    fz_always(ctx)
    {
        fz_drop_buffer(ctx, table);
    }
    fz_catch(ctx)
    {
        fz_rethrow(ctx);
    }
}

} // namespace pdf
