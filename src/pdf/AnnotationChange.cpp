// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/AnnotationChange.h"

#include "pdf/Engine.h"
#include "pdf/Handles.h"

namespace pdf {
namespace {

/// Goes on whatever happens, since there is nobody who could do better.
template <typename Work>
void attemptQuietly(fz_context* ctx, Work work)
{
    fz_try(ctx)
    {
        work();
    }
    fz_catch(ctx)
    {
        // An object that cannot be put back or deleted stays as it is.
    }
}

} // namespace

AnnotationChange::AnnotationChange(DocumentHandle& document)
    : m_document(document)
{}

AnnotationChange::~AnnotationChange()
{
    if (!m_isCommitted)
        takeBack();
}

void AnnotationChange::remember(fz_context* ctx, pdf_obj* dictionary)
{
    const pdf_obj* resolved = pdf_resolve_indirect(ctx, dictionary);
    if (!pdf_is_dict(ctx, dictionary))
        return;
    bool isNew = false;
    engine::translated(ctx, [&] {
        isNew = m_remembered.insert(resolved).second;
        if (isNew)
            m_memories.emplace_back();
    });
    if (!isNew)
        return;
    Memory& memory = m_memories.back();
    memory.entries = ObjectHandle(pdf_copy_dict(ctx, dictionary));
    memory.dictionary = ObjectHandle(pdf_keep_obj(ctx, dictionary));
}

void AnnotationChange::touch(fz_context* ctx, pdf_obj* annotation)
{
    const int number = pdf_to_num(ctx, annotation);
    engine::translated(ctx, [&] { m_touched.push_back(number); });
}

void AnnotationChange::beginAppearance(fz_context* ctx, pdf_obj* annotation)
{
    touch(ctx, annotation);
    const int first = pdf_xref_len(ctx, m_document.document);
    const int number = pdf_to_num(ctx, annotation);
    engine::translated(ctx, [&] {
        // The commit finds it there and needs no memory.
        m_document.appearances.try_emplace(number);
        m_appearances.push_back({number, {first, first}, true});
    });
}

void AnnotationChange::endAppearance(fz_context* ctx)
{
    m_appearances.back().objects.end = pdf_xref_len(ctx, m_document.document);
    m_appearances.back().isOpen = false;
}

void AnnotationChange::commit()
{
    fz_context* ctx = engine::context();
    m_isCommitted = true;
    for (const Appearance& appearance : m_appearances) {
        // An annotation without a number cannot be told from others, so its last appearance stays.
        if (appearance.annotation == 0)
            continue;
        annotations::ObjectRange& last = m_document.appearances[appearance.annotation];
        attemptQuietly(ctx, [&] { annotations::deleteObjects(ctx, m_document.document, last); });
        last = appearance.objects;
    }
    for (const int number : m_touched)
        m_document.annotationLog.note(number);
}

void AnnotationChange::takeBack()
{
    fz_context* ctx = engine::context();
    for (auto memory = m_memories.rbegin(); memory != m_memories.rend(); ++memory)
        attemptQuietly(ctx, [&] { putBack(ctx, *memory); });
    for (Appearance& appearance : m_appearances) {
        attemptQuietly(ctx, [&] {
            if (appearance.isOpen)
                appearance.objects.end = pdf_xref_len(ctx, m_document.document);
            annotations::deleteObjects(ctx, m_document.document, appearance.objects);
        });
    }
}

/// Needs no memory: the dictionary has had room for all of its entries before.
void AnnotationChange::putBack(fz_context* ctx, const Memory& memory)
{
    pdf_obj* dictionary = memory.dictionary.get();
    pdf_obj* entries = memory.entries.get();
    if (!dictionary || !entries)
        return;
    for (int i = pdf_dict_len(ctx, dictionary) - 1; i >= 0; --i) {
        pdf_obj* key = pdf_dict_get_key(ctx, dictionary, i);
        if (!pdf_dict_get(ctx, entries, key))
            pdf_dict_del(ctx, dictionary, key);
    }
    const int count = pdf_dict_len(ctx, entries);
    for (int i = 0; i < count; ++i)
        pdf_dict_put(ctx, dictionary, pdf_dict_get_key(ctx, entries, i), pdf_dict_get_val(ctx, entries, i));
}

} // namespace pdf
