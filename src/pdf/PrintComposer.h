// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "pdf/CookieScope.h"
#include "pdf/ObjectCopier.h"
#include "pdf/PDFDocument.h"
#include "pdf/PrintFile.h"
#include "pdf/SheetPlacement.h"

#include <mupdf/pdf.h>

#include <map>
#include <set>
#include <vector>

namespace pdf {

class DocumentHandle;
class PageHandle;

/// Puts pages of a document on sheets: each page's content becomes a form that the sheet shows at its place,
/// below the appearances of its annotations. Takes the document's lock for a page at a time.
class PrintComposer
{
public:
    PrintComposer(
        PDFDocument& document, DocumentHandle& handle, const PrintLayout& layout, FileReplacement& file,
        const Cancellation& cancellation);

    /// Writes everything but what cannot be read. Ends early when it is cancelled or the file fails.
    Result<PrintOutcome> compose(const PDFDocument::PrintProgress& progress);

private:
    /// A page that is in the file and can be shown on any number of sheets.
    struct Composed
    {
        QSizeF paper;
        /// The entries of the sheet.
        QByteArray entries;
    };

    /// The appearance of an annotation.
    struct Appearance
    {
        int form = 0;
        fz_matrix matrix = fz_identity;
    };

    std::optional<PDFError> readDocument();
    const Composed& composed(int index);
    Composed composePage(int index);
    int addContent(PDFPage& page, double scale);
    int copyContent(PageHandle& page);
    void copyAnnotations(PageHandle& page);
    void writeContent(fz_context* ctx, pdf_obj* page, const char* box, int form);
    void addAppearances(fz_context* ctx, pdf_annot* first);
    void addAppearance(fz_context* ctx, pdf_annot* annotation);
    void copyPending();
    QByteArray groupOf(PageHandle& page);
    std::vector<int> sheets() const;

    PDFDocument& m_document;
    DocumentHandle& m_handle;
    const PrintLayout& m_layout;
    FileReplacement& m_target;
    PrintFile m_file;
    ObjectCopier m_copier;
    const Cancellation m_cancellation;
    /// The document does not allow more than a picture of its pages.
    bool m_onlyPictures = false;
    QByteArray m_catalog;
    std::map<int, Composed> m_composed;
    std::set<int> m_damagedPages;
    /// Of the page that is being composed.
    std::vector<Appearance> m_appearances;
};

/// Does what PDFDocument::writePrintable() promises.
Result<PrintOutcome> writePrint(
    PDFDocument& document, DocumentHandle& handle, const QString& path, const PrintLayout& layout,
    const Cancellation& cancellation, const PDFDocument::PrintProgress& progress);

} // namespace pdf
