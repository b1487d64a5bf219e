// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "pdf/PrintFile.h"

#include <mupdf/pdf.h>

#include <vector>

namespace pdf {

/// Copies objects of a document to another file, with everything that they refer to, each of them once and
/// under a new number. Streams are copied as they are, but decrypted. Pages are not followed: from any of
/// them one would come to all. All functions run within engine::attempt and under the document's lock, and
/// may throw as MuPDF does.
class ObjectCopier
{
public:
    ObjectCopier(pdf_document* document, PrintFile& file);

    /// Writes the text of an object that has references to copies in the place of its own.
    void print(fz_context* ctx, fz_output* out, pdf_obj* object) { print(ctx, out, object, 0); }

    /// The number that the copy of an indirect object has or will have. A form is told in its copy that it is
    /// one, because annotations may have appearances that do not say so.
    int copyOf(fz_context* ctx, pdf_obj* reference, bool isForm = false);

    /// Writes the copies that were asked for. One that cannot be read is left out, which makes it null.
    void writePending(fz_context* ctx);

    /// Forgets the objects that MuPDF has made up for the annotations of a page; their numbers mean others on
    /// the next.
    void forgetLocalObjects();

private:
    struct Pending
    {
        int source = 0;
        int copy = 0;
        bool isForm = false;
    };

    void print(fz_context* ctx, fz_output* out, pdf_obj* object, int depth);
    void write(fz_context* ctx, const Pending& pending);
    void printStream(fz_context* ctx, fz_output* out, pdf_obj* dictionary, bool isForm, std::size_t size);

    pdf_document* const m_document;
    PrintFile& m_file;
    /// The copies by the numbers of their sources; 0 where there is none.
    std::vector<int> m_copies;
    std::vector<int> m_localObjects;
    std::vector<Pending> m_pending;
};

} // namespace pdf
