// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "pdf/AnnotationObject.h"
#include "pdf/CookieScope.h"
#include "pdf/ObjectHandle.h"
#include "pdf/PDFAnnotation.h"
#include "pdf/PDFError.h"

#include <mupdf/pdf.h>

#include <memory>
#include <mutex>
#include <optional>
#include <vector>

namespace pdf {

class DocumentHandle;

/// Which annotations of a document somebody holds and what has been done to them. Changes wait here, so that
/// whoever makes them does not have to wait for the document, until somebody who has the document's lock
/// wants to see them.
class AnnotationStore
{
public:
    explicit AnnotationStore(DocumentHandle& document);

    /// Has the annotation looked at by the next flush(). Any thread, without the document's lock.
    void enqueue(std::shared_ptr<PDFAnnotation> annotation);

    // Under the document's lock.

    /// Brings the document up to date. What could not be done for an error is tried again by the next call.
    std::optional<PDFError> flush(CookieScope& scope);

    /// All annotations of a page in the order in which they are drawn. Those that cannot be read are left
    /// out.
    std::vector<std::shared_ptr<PDFAnnotation>>
    annotations(CookieScope& scope, int pageIndex, const std::shared_ptr<PDFDocument>& document);

    /// To be called before the document is dropped.
    void clear();

private:
    struct Entry
    {
        std::weak_ptr<PDFAnnotation> annotation;
        int pageIndex = -1;
        ObjectHandle object;
        annotations::ObjectRange appearance;
        QSizeF drawnSize;
    };

    /// An annotation as it is when it is flushed.
    struct State
    {
        PDFAnnotation::Properties properties;
        PDFAnnotation::Changes changes;
        int pageIndex = -1;
    };

    /// What is read of an annotation; all of it borrowed.
    struct Found
    {
        pdf_obj* object = nullptr;
        const char* type = "";
        QRectF bounds;
        const char* contents = "";
        const char* value = "";
        int flags = 0;
    };

    static State takeState(PDFAnnotation& annotation);
    static void giveBack(PDFAnnotation& annotation, const PDFAnnotation::Changes& changes);
    static void read(fz_context* ctx, pdf_obj* object, Found& found);

    Entry* find(const PDFAnnotation& annotation);
    void forgetReleased();
    std::optional<PDFError> flush(PDFAnnotation& annotation, CookieScope& scope);
    std::optional<PDFError> remove(Entry& entry, CookieScope& scope);
    std::optional<PDFError> writeFound(const State& state, Entry* entry, CookieScope& scope);
    std::optional<PDFError>
    writeOwn(PDFAnnotation& annotation, State& state, Entry* entry, CookieScope& scope);
    annotations::Content contentOf(const PDFAnnotation& annotation, const State& state, bool isNew) const;
    std::shared_ptr<PDFAnnotation>
    annotationOf(const Found& found, int pageIndex, const std::shared_ptr<PDFDocument>& document);
    pdf_obj* pageObject(fz_context* ctx, int pageIndex);

    DocumentHandle& m_document;
    std::vector<Entry> m_entries;

    std::mutex m_pendingMutex;
    std::vector<std::shared_ptr<PDFAnnotation>> m_pending;
};

} // namespace pdf
