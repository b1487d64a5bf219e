// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/Handles.h"

#include "pdf/Engine.h"
#include "pdf/MuPDFVersion.h"

#include <cmath>

namespace pdf {
namespace {

// What a page without a usable media box gets, as MuPDF has it: US letter.
constexpr fz_rect defaultBox = {0, 0, 612, 792};

bool isUsable(fz_rect box)
{
    return std::isfinite(box.x0) && std::isfinite(box.y0) && std::isfinite(box.x1) && std::isfinite(box.y1) &&
           box.x1 - box.x0 >= 1 && box.y1 - box.y0 >= 1;
}

fz_rect inheritedBox(fz_context* ctx, pdf_obj* page, pdf_obj* key, fz_rect fallback)
{
    pdf_obj* box = pdf_dict_get_inheritable(ctx, page, key);
    if (!pdf_is_array(ctx, box))
        return fallback;
    const fz_rect rect = pdf_to_rect(ctx, box);
    return isUsable(rect) ? rect : fallback;
}

/// Loads a page without asking the page tree whether it has that many.
pdf_page* loadPage(fz_context* ctx, pdf_document* document, int index)
{
    pdf_page* page = pdf_page_from_fz_page(ctx, pdf_load_page_imp(ctx, &document->super, 0, index));
    // MuPDF takes a reference to the object of a page that it finds in a map, and never gives it back.
    if (document->fwd_page_map)
        pdf_drop_obj(ctx, page->obj);
    return page;
}

} // namespace

int normalisedRotation(double degrees)
{
    const int turns = static_cast<int>(std::lround(std::fmod(degrees, 360) / 90)) % 4;
    return (turns + 4) % 4 * 90;
}

DocumentHandle::DocumentHandle()
    : annotations(*this)
    , annotationLists(*this)
{}

DocumentHandle::~DocumentHandle()
{
    fz_context* ctx = engine::context();
    annotations.clear();
    annotationLists.clear();
    pages.clear(ctx);
    pdf_drop_document(ctx, document);
}

void DocumentHandle::noteChange()
{
    ++changes;
    // From now on there is something to lose if the file's content should be lost.
    source->preserve();
}

PageHandle::PageHandle(DocumentHandle& owner)
    : document(owner)
{}

PageHandle::~PageHandle()
{
    const std::lock_guard lock(document.mutex);
    fz_context* ctx = engine::context();
    if (page)
        fz_drop_page(ctx, &page->super);
    pdf_drop_obj(ctx, object);
}

void PageHandle::load(fz_context* ctx, pdf_obj* pageObject, int pageIndex)
{
    index = pageIndex;
    object = pdf_keep_obj(ctx, pageObject);
    mediaBox = inheritedBox(ctx, object, PDF_NAME(MediaBox), defaultBox);
    cropBox = inheritedBox(ctx, object, PDF_NAME(CropBox), mediaBox);
    // As in DisjointBoxes.cpp: a crop box beside the page is none.
    if (fz_is_empty_rect(fz_intersect_rect(mediaBox, cropBox)))
        cropBox = mediaBox;
    loadGeometry(ctx);
}

void PageHandle::loadGeometry(fz_context* ctx)
{
    PageGeometry geometry;
    const double degrees = pdf_to_real(ctx, pdf_dict_get_inheritable(ctx, object, PDF_NAME(Rotate)));
    geometry.rotation = normalisedRotation(degrees);

    fz_rect visible;
    pdf_page_obj_transform(ctx, object, &visible, &geometry.pageToDisplay);
    geometry.displayRect = fz_transform_rect(visible, geometry.pageToDisplay);
    const fz_matrix& matrix = geometry.pageToDisplay;
    const float area = std::fabs(matrix.a * matrix.d - matrix.b * matrix.c);
    if (!isUsable(geometry.displayRect) || !std::isnormal(area))
        fz_throw(ctx, FZ_ERROR_GENERIC, "the page has no usable size");

    const std::lock_guard lock(m_geometryMutex);
    m_geometry = geometry;
}

PageGeometry PageHandle::geometry() const
{
    const std::lock_guard lock(m_geometryMutex);
    return m_geometry;
}

pdf_page* PageHandle::loadContents(fz_context* ctx)
{
    // It holds the annotations that there were, and what MuPDF has drawn in the place of missing appearances.
    if (page && pageChanges != document.changes) {
        fz_drop_page(ctx, &page->super);
        page = nullptr;
    }
    if (page)
        return page;
    pageChanges = document.changes;
    pdf_document* owner = document.document;
    const int number = pdf_to_num(ctx, object);
    if (number == 0 || owner->fwd_page_map) {
        page = loadPage(ctx, owner, index);
        return page;
    }
    // MuPDF looks for a page by its index from the tree's first kid on. We know the object; a page map, which
    // it asks first, saves it the search.
    int* map = static_cast<int*>(fz_calloc(ctx, static_cast<std::size_t>(index) + 1, sizeof(int)));
    map[index] = number;
    const int mapped = owner->map_page_count;
    owner->fwd_page_map = map;
    owner->map_page_count = index + 1;
    fz_try(ctx)
    {
        page = loadPage(ctx, owner, index);
    }
    fz_always(ctx)
    {
        owner->fwd_page_map = nullptr;
        owner->map_page_count = mapped;
        fz_free(ctx, map);
    }
    fz_catch(ctx)
    {
        fz_rethrow(ctx);
    }
    return page;
}

} // namespace pdf
