// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "pdf/AnnotationObject.h"
#include "pdf/ObjectHandle.h"

#include <mupdf/pdf.h>

#include <unordered_set>
#include <vector>

namespace pdf {

class DocumentHandle;

/// A change of annotations or form fields that is made as a whole or not at all, so that what a field holds
/// and what it shows cannot part: unless it is committed, everything is put back as it was. To be used under
/// the document's lock, within an operation.
class AnnotationChange
{
public:
    explicit AnnotationChange(DocumentHandle& document);
    ~AnnotationChange();
    AnnotationChange(const AnnotationChange&) = delete;
    AnnotationChange& operator=(const AnnotationChange&) = delete;

    /// Remembers the entries of a dictionary before it is changed; arrays and dictionaries in it are to be
    /// replaced, not changed. May throw as MuPDF does.
    void remember(fz_context* ctx, pdf_obj* dictionary);

    /// The annotation looks or lies differently. May throw as MuPDF does.
    void touch(fz_context* ctx, pdf_obj* annotation);

    /// What is made between these two belongs to the annotation's new appearance. The objects of the last one
    /// that was made here are deleted with the commit. May throw as MuPDF does.
    void beginAppearance(fz_context* ctx, pdf_obj* annotation);
    void endAppearance(fz_context* ctx);

    /// Never fails.
    void commit();

private:
    struct Memory
    {
        ObjectHandle dictionary;
        ObjectHandle entries;
    };
    struct Appearance
    {
        int annotation = 0;
        annotations::ObjectRange objects;
        bool isOpen = true;
    };

    void takeBack();
    static void putBack(fz_context* ctx, const Memory& memory);

    DocumentHandle& m_document;
    std::vector<Memory> m_memories;
    std::unordered_set<const pdf_obj*> m_remembered;
    std::vector<int> m_touched;
    std::vector<Appearance> m_appearances;
    bool m_isCommitted = false;
};

} // namespace pdf
