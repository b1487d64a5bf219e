// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/PDFPage.h"

#include "pdf/Engine.h"
#include "pdf/FormReader.h"
#include "pdf/Handles.h"
#include "pdf/LinkReader.h"
#include "pdf/MuPDFVersion.h"
#include "pdf/PDFDocument.h"
#include "pdf/PictureCount.h"
#include "pdf/TextDevice.h"
#include "pdf/TextLayer.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace pdf {
namespace {

QSizeF sizeOf(const fz_rect& rect)
{
    return {double(rect.x1 - rect.x0), double(rect.y1 - rect.y0)};
}

QTransform transformOf(const fz_matrix& matrix)
{
    return {matrix.a, matrix.b, matrix.c, matrix.d, matrix.e, matrix.f};
}

using RunFunction = void (*)(fz_context* ctx, pdf_page* page, fz_device* device, fz_cookie* cookie);

void runContents(fz_context* ctx, pdf_page* page, fz_device* device, fz_cookie* cookie)
{
    pdf_run_page_contents(ctx, page, device, fz_identity, cookie);
}

void runAnnotations(fz_context* ctx, pdf_page* page, fz_device* device, fz_cookie* cookie)
{
    pdf_run_page_annots(ctx, page, device, fz_identity, cookie);
    pdf_run_page_widgets(ctx, page, device, fz_identity, cookie);
}

/// Ends the groups and clips that damaged content has left open, so that what is in them is shown.
void closeContainers(fz_context* ctx, fz_device* device)
{
    while (device->container_len > 0) {
        switch (device->container[device->container_len - 1].type) {
        case fz_device_container_stack_is_mask:
            fz_end_mask(ctx, device);
            break;
        case fz_device_container_stack_is_group:
            fz_end_group(ctx, device);
            break;
        case fz_device_container_stack_is_tile:
            fz_end_tile(ctx, device);
            break;
        default:
            fz_pop_clip(ctx, device);
        }
    }
}

/// Runs the page, up to where it is damaged. May throw as MuPDF does.
void runUndamaged(fz_context* ctx, pdf_page* page, RunFunction run, fz_device* device, fz_cookie* cookie)
{
    fz_try(ctx)
    {
        run(ctx, page, device, cookie);
    }
    fz_catch(ctx)
    {
        engine::rethrowUnlessDamage(ctx);
    }
    closeContainers(ctx, device);
}

/// Records what `run` draws. May throw as MuPDF does.
void record(
    fz_context* ctx, PageHandle& handle, RunFunction run, DisplayListHandle& target, fz_cookie* cookie)
{
    pdf_page* page = handle.loadContents(ctx);
    const std::ptrdiff_t before = engine::memoryOfThread();
    fz_display_list* list = fz_new_display_list(ctx, handle.geometry().displayRect);
    fz_device* device = nullptr;
    fz_var(device);
    fz_try(ctx)
    {
        device = fz_new_list_device(ctx, list);
        countPictures(device, target.samples);
        runUndamaged(ctx, page, run, device, cookie);
        fz_close_device(ctx, device);
    }
    fz_always(ctx)
    {
        fz_drop_device(ctx, device);
    }
    fz_catch(ctx)
    {
        fz_drop_display_list(ctx, list);
        fz_rethrow(ctx);
    }
    target.list = list;
    target.bytes = static_cast<std::size_t>(std::max(engine::memoryOfThread() - before, std::ptrdiff_t{0}));
}

Result<std::shared_ptr<DisplayListHandle>>
recordList(PageHandle& handle, RunFunction run, const Cancellation& cancellation)
{
    auto list = std::make_shared<DisplayListHandle>();
    const std::lock_guard lock(handle.document.mutex);
    list->displaySize = sizeOf(handle.geometry().displayRect);
    CookieScope scope(cancellation);
    // What could not be written waits for the next attempt; the rest is shown all the same.
    static_cast<void>(handle.document.annotations.flush(scope));
    if (auto error =
            engine::attempt(scope, [&](fz_context* ctx) { record(ctx, handle, run, *list, scope.cookie()); }))
        return *error;
    return list;
}

} // namespace

PDFPage::PDFPage(std::shared_ptr<PDFDocument> document, std::unique_ptr<PageHandle> handle)
    : m_document(std::move(document))
    , m_handle(std::move(handle))
{}

PDFPage::~PDFPage() = default;

std::shared_ptr<PDFDocument> PDFPage::document() const
{
    return m_document;
}

int PDFPage::index() const
{
    return m_handle->index;
}

QRectF PDFPage::bounds(DisplayBox box) const
{
    const fz_rect& rect = box == DisplayBox::mediaBox ? m_handle->mediaBox : m_handle->cropBox;
    return {QPointF(rect.x0, rect.y0), QPointF(rect.x1, rect.y1)};
}

int PDFPage::rotation() const
{
    return m_handle->geometry().rotation;
}

Result<std::monostate> PDFPage::setRotation(int degrees)
{
    // Declared first, so that the pages are let go after the lock is given back: destroying one takes the
    // lock.
    std::vector<std::shared_ptr<PDFPage>> others;
    DocumentHandle& document = m_handle->document;
    const std::lock_guard lock(document.mutex);
    const int rotation = normalisedRotation(degrees);
    if (rotation == m_handle->geometry().rotation)
        return std::monostate();
    for (const auto& [number, page] : document.livePages) {
        if (auto live = page.lock())
            others.push_back(std::move(live));
    }
    CookieScope scope{Cancellation()};
    document.noteChange();
    const auto error = engine::attempt(scope, [&](fz_context* ctx) {
        pdf_dict_put_int(ctx, m_handle->object, PDF_NAME(Rotate), rotation);
        m_handle->loadGeometry(ctx);
        // A page object may stand in the page tree more than once.
        for (const auto& other : others) {
            if (pdf_to_num(ctx, other->m_handle->object) == pdf_to_num(ctx, m_handle->object))
                other->m_handle->loadGeometry(ctx);
        }
    });
    if (error)
        return *error;
    return std::monostate();
}

QSizeF PDFPage::displaySize() const
{
    return sizeOf(m_handle->geometry().displayRect);
}

QTransform PDFPage::pageToDisplay() const
{
    return transformOf(m_handle->geometry().pageToDisplay);
}

std::optional<QString> PDFPage::string(const Cancellation& cancellation)
{
    const auto layer = text(cancellation);
    if (!layer || layer->string().isEmpty())
        return std::nullopt;
    return layer->string();
}

std::shared_ptr<const TextLayer> PDFPage::text(const Cancellation& cancellation)
{
    const std::lock_guard lock(m_handle->document.mutex);
    if (!m_handle->text) {
        CookieScope scope(cancellation);
        GlyphCollector collector;
        const auto error = engine::attempt(scope, [&](fz_context* ctx) {
            collectGlyphs(ctx, m_handle->document.document, *m_handle, collector, scope.cookie());
        });
        if (error)
            return nullptr;
        m_handle->text = std::make_shared<const TextLayer>(collector, pageToDisplay().inverted());
    }
    return m_handle->text;
}

qsizetype PDFPage::characterIndex(QPointF point)
{
    const auto layer = text();
    return layer ? layer->characterIndex(point) : -1;
}

std::optional<PDFSelection> PDFPage::selection(TextRange range)
{
    auto layer = text();
    if (!layer)
        return std::nullopt;
    const TextRange inside = layer->clipped(range);
    if (inside.length == 0)
        return std::nullopt;
    QString string = layer->string().mid(inside.location, inside.length);
    return PDFSelection(m_document, {{index(), inside, std::move(layer)}}, std::move(string));
}

std::optional<PDFSelection> PDFPage::selection(QPointF from, QPointF to)
{
    const auto layer = text();
    if (!layer)
        return std::nullopt;
    const auto [start, end] = std::minmax({layer->insertionIndex(from), layer->insertionIndex(to)});
    return selection({start, end - start});
}

std::optional<PDFSelection> PDFPage::selectionForWord(QPointF point)
{
    const qsizetype index = characterIndex(point);
    return index < 0 ? std::nullopt : selection(text()->wordRange(index));
}

std::optional<PDFSelection> PDFPage::selectionForLine(QPointF point)
{
    const qsizetype index = characterIndex(point);
    return index < 0 ? std::nullopt : selection(text()->lineRange(index));
}

std::vector<PDFLink> PDFPage::links(const Cancellation& cancellation)
{
    std::vector<PDFLink> links;
    const std::lock_guard lock(m_handle->document.mutex);
    CookieScope scope(cancellation);
    const auto error = engine::attempt(
        scope, [&](fz_context* ctx) { readLinks(ctx, m_handle->document, *m_handle, links); });
    return error ? std::vector<PDFLink>() : links;
}

Result<PDFDisplayList> PDFPage::contentDisplayList(const Cancellation& cancellation)
{
    auto list = recordList(*m_handle, runContents, cancellation);
    if (!list)
        return list.error();
    return PDFDisplayList(*std::move(list));
}

Result<PDFDisplayList> PDFPage::annotationDisplayList(const Cancellation& cancellation)
{
    auto list = recordList(*m_handle, runAnnotations, cancellation);
    if (!list)
        return list.error();
    return PDFDisplayList(*std::move(list));
}

Result<std::vector<PDFFormField>> PDFPage::formFields(const Cancellation& cancellation) const
{
    const std::lock_guard lock(m_handle->document.mutex);
    CookieScope scope(cancellation);
    fields::PageRecord record;
    if (auto error = engine::attempt(scope, [&](fz_context* ctx) {
            fields::readPage(ctx, m_handle->document, m_handle->object, m_handle->index, record);
        }))
        return *error;
    return fields::fieldsOf(std::move(record), pageToDisplay());
}

} // namespace pdf
