// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "pdf/AnnotationObject.h"
#include "pdf/CookieScope.h"
#include "pdf/ObjectHandle.h"
#include "pdf/PDFAnnotation.h"
#include "pdf/PDFError.h"

#include <mupdf/pdf.h>

#include <cstddef>
#include <list>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <unordered_map>
#include <vector>

namespace pdf {

class AnnotationChange;
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

    /// Brings the document up to date. What could not be done for an error leaves the document as it was and
    /// is tried again by the next call, in its turn.
    std::optional<PDFError> flush(CookieScope& scope);

    /// All annotations of a page in the order in which they are drawn. Those that cannot be read are left
    /// out, and of a page with more than there may be, those beyond that nobody holds. Takes time in
    /// proportion to their number.
    std::vector<std::shared_ptr<PDFAnnotation>>
    annotations(CookieScope& scope, int pageIndex, const std::shared_ptr<PDFDocument>& document);

    /// The form field that the widget shows has another value now.
    void rereadValue(CookieScope& scope, pdf_obj* widget);

    /// How opaque the background of the widget is, which its object does not say.
    double backgroundOpacity(pdf_obj* widget) const;

    /// To be called before the document is dropped.
    void clear();

private:
    /// An object, whichever way it is named: by its number, or by itself where it has none.
    struct Name
    {
        int number = 0;
        const pdf_obj* object = nullptr;

        friend bool operator==(const Name&, const Name&) = default;
    };
    struct NameHash
    {
        std::size_t operator()(const Name& name) const;
    };

    struct Entry
    {
        std::weak_ptr<PDFAnnotation> annotation;
        int pageIndex = -1;
        ObjectHandle object;
        /// False while one that is made here has not got as far as its page.
        bool isOnPage = false;
        /// Of one that was made here, the size that its appearance has.
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
        bool isReadOnly = false;
    };

    static State takeState(PDFAnnotation& annotation);
    static void giveBack(PDFAnnotation& annotation, const PDFAnnotation::Changes& changes);
    static void read(fz_context* ctx, pdf_obj* object, Found& found);
    static Name nameOf(pdf_obj* object);

    Entry* find(const PDFAnnotation& annotation);
    std::vector<std::shared_ptr<PDFAnnotation>> findLive(pdf_obj* object) const;
    Entry& insert(const std::shared_ptr<PDFAnnotation>& annotation, int pageIndex, ObjectHandle object);
    void erase(const PDFAnnotation* annotation);
    void forgetReleased();
    std::optional<PDFError> flush(PDFAnnotation& annotation, CookieScope& scope);
    std::optional<PDFError> write(PDFAnnotation& annotation, const State& state, CookieScope& scope);
    std::optional<PDFError> remove(const PDFAnnotation& annotation, Entry& entry, CookieScope& scope);
    std::optional<PDFError>
    writeFound(const PDFAnnotation& annotation, const State& state, const Entry& entry, CookieScope& scope);
    std::optional<PDFError> writeFoundValue(const Entry& entry, const State& state, CookieScope& scope);
    std::optional<PDFError> move(const State& state, const Entry& entry, CookieScope& scope);
    std::optional<PDFError>
    writeOwn(PDFAnnotation& annotation, const State& state, Entry* entry, CookieScope& scope);
    void discard(const PDFAnnotation& annotation, const Entry& entry);
    std::optional<PDFError> draw(
        AnnotationChange& change, const PDFAnnotation& annotation, pdf_obj* object, const QSizeF& size,
        CookieScope& scope);
    annotations::Content contentOf(const PDFAnnotation& annotation, const State& state, bool isNew) const;
    std::shared_ptr<PDFAnnotation>
    annotationOf(const Found& found, int pageIndex, const std::shared_ptr<PDFDocument>& document);
    pdf_obj* pageObject(fz_context* ctx, int pageIndex);

    DocumentHandle& m_document;
    std::unordered_map<const PDFAnnotation*, Entry> m_entries;
    /// The annotations of the entries by their objects. A page's object may stand in the document twice.
    std::unordered_multimap<Name, const PDFAnnotation*, NameHash> m_names;

    std::mutex m_pendingMutex;
    // In containers that take an element back without needing memory for it.
    std::list<std::shared_ptr<PDFAnnotation>> m_pending;
    /// The same, to be looked up.
    std::set<const PDFAnnotation*> m_isPending;
};

} // namespace pdf
