// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "pdf/AnnotationStore.h"
#include "pdf/PDFPage.h"
#include "pdf/PageTree.h"
#include "pdf/SourceFile.h"

#include <QRectF>
#include <QTransform>

#include <mupdf/pdf.h>

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <unordered_map>

// What the engine's public classes hold of MuPDF.
namespace pdf {

class TextLayer;

/// An open document of MuPDF. Everything in it is guarded by its mutex, except what is set once at opening
/// and what is atomic.
class DocumentHandle
{
public:
    DocumentHandle();
    ~DocumentHandle();

    /// To be called by whoever changes the document, before or after the change. Any thread.
    void noteChange();

    QString path;
    std::shared_ptr<SourceFile> source;
    std::mutex mutex;
    /// Held while the document is written, so that writes come one after another; taken before the other.
    std::mutex writing;
    /// The document's own file as it was when it was opened or last written; guarded by `writing`.
    FileIdentity ownFile;
    pdf_document* document = nullptr;
    std::atomic<bool> isLocked = false;
    /// What unlocked it.
    QString password;
    /// Unlocked by the owner's password, which grants everything.
    bool isOwner = false;
    PageTree pages;
    /// The number of pages once they can be read; never waits for an operation that holds the mutex.
    std::atomic<int> pageCount = 0;
    AnnotationStore annotations;
    /// Counts the changes made to the document since it was opened; see noteChange().
    std::atomic<std::uint64_t> changes = 0;
    /// The changes that the document's own file has.
    std::atomic<std::uint64_t> savedChanges = 0;
    /// The pages that somebody holds, by index.
    std::unordered_map<int, std::weak_ptr<PDFPage>> livePages;
};

/// How a page lies in its display.
struct PageGeometry
{
    /// Clockwise, one of 0, 90, 180, 270.
    int rotation = 0;
    fz_matrix pageToDisplay = fz_identity;
    fz_rect displayRect = fz_empty_rect;
};

/// The rotation that a number of degrees stands for: the nearest of 0, 90, 180, 270.
int normalisedRotation(double degrees);

/// A page's dictionary with what was read from it when the page was made.
class PageHandle
{
public:
    explicit PageHandle(DocumentHandle& document);
    ~PageHandle();

    /// Reads boxes and rotation. May throw as MuPDF does.
    void load(fz_context* ctx, pdf_obj* pageObject, int pageIndex);

    /// Reads the rotation and what follows from it. Under the document's lock; may throw as MuPDF does.
    void loadGeometry(fz_context* ctx);

    /// A rotation of the page replaces it, so whoever needs two parts that fit together asks once. Any
    /// thread.
    PageGeometry geometry() const;

    /// The page with its annotations, made at the first call. May throw as MuPDF does.
    pdf_page* loadContents(fz_context* ctx);

    DocumentHandle& document;

    // Never changes after load().
    int index = -1;
    pdf_obj* object = nullptr;
    fz_rect mediaBox = fz_empty_rect;
    fz_rect cropBox = fz_empty_rect;

    // Guarded by the document's mutex.
    pdf_page* page = nullptr;
    /// The count of the document's changes when that was made.
    std::uint64_t pageChanges = 0;
    std::shared_ptr<const TextLayer> text;

private:
    mutable std::mutex m_geometryMutex;
    PageGeometry m_geometry;
};

class DisplayListHandle
{
public:
    DisplayListHandle() = default;
    ~DisplayListHandle();
    DisplayListHandle(const DisplayListHandle&) = delete;
    DisplayListHandle& operator=(const DisplayListHandle&) = delete;

    fz_display_list* list = nullptr;
    QSizeF displaySize;
    /// What recording it has left in memory.
    std::size_t bytes = 0;
    /// Of the pictures that it shows.
    std::int64_t samples = 0;
};

} // namespace pdf
