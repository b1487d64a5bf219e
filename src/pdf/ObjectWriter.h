// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <mupdf/pdf.h>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace pdf {

/// Writes a document's objects as an update to the file that it was read from or as a file of its own. The
/// document in memory stays as it is, so it can be written again and changed further. Encryption stays as it
/// is. All functions run within engine::attempt and under the document's lock, and may throw as MuPDF does.
class ObjectWriter
{
public:
    explicit ObjectWriter(pdf_document* document);

    /// False for a document whose cross-reference table had to be reconstructed: nothing can refer to that.
    static bool canUpdate(pdf_document* document);

    /// Appends the changed objects to the file's content, which must have been written to the output, with a
    /// cross-reference section of the kind that the file has; nothing where nothing was changed.
    void writeUpdate(fz_context* ctx, fz_output* out);

    /// Writes all objects that can be reached. One that cannot be read is left out, which makes it null.
    void writeDocument(fz_context* ctx, fz_output* out);

private:
    struct Entry
    {
        int number = 0;
        int generation = 0;
        bool isFree = false;
        /// Where the object was written.
        std::int64_t offset = 0;
    };

    void collectChanges(fz_context* ctx);
    void collectReachable(fz_context* ctx);
    void collectReferences(fz_context* ctx, pdf_obj* object, int depth);
    void writeObjects(fz_context* ctx, bool leavesOutDamage);
    void writeObject(fz_context* ctx, Entry& entry, pdf_obj* object);
    void writeStream(fz_context* ctx, Entry& entry, pdf_obj* dictionary, pdf_crypt* crypt);
    void sortEntries();
    void fillGaps(fz_context* ctx);
    pdf_obj* newTrailer(fz_context* ctx, bool keepsUnknownKeys);
    std::size_t endOfRun(std::size_t start) const;
    void writeTable(fz_context* ctx, pdf_obj* trailer);
    void writeCrossReferenceStream(fz_context* ctx, pdf_obj* trailer);

    pdf_document* const m_document;
    fz_output* m_out = nullptr;
    std::vector<Entry> m_entries;
    /// For writeDocument(): what was found, by object number, and what has yet to be looked at.
    std::vector<bool> m_isReached;
    std::vector<int> m_pending;
};

} // namespace pdf
