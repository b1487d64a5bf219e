// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/PDFPage.h"

#include "pdf/Engine.h"
#include "pdf/FormReader.h"
#include "pdf/Handles.h"
#include "pdf/LinkReader.h"
#include "pdf/MuPDFVersion.h"
#include "pdf/PDFDocument.h"
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

void runContents(fz_context* ctx, void* page, fz_device* device, fz_cookie* cookie)
{
    pdf_run_page_contents(ctx, static_cast<pdf_page*>(page), device, fz_identity, cookie);
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
    document.annotationLog.noteAll();
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
    DocumentHandle& document = m_handle->document;
    const std::lock_guard lock(document.mutex);
    const std::uint64_t changes = document.textChanges.count(index());
    if (m_handle->text && m_handle->textChanges == changes)
        return m_handle->text;
    CookieScope scope(cancellation);
    // What could not be written waits for the next attempt; the rest is read all the same.
    static_cast<void>(document.annotations.flush(scope));
    PageGlyphs glyphs;
    const auto error = engine::attempt(scope, [&](fz_context* ctx) {
        collectGlyphs(ctx, document.document, *m_handle, glyphs, scope.cookie());
    });
    if (error || !document.source->isReadable())
        return nullptr;
    m_handle->text = std::make_shared<const TextLayer>(glyphs, pageToDisplay().inverted());
    m_handle->textChanges = changes;
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
    static_cast<void>(m_handle->document.annotations.flush(scope));
    const auto error = engine::attempt(
        scope, [&](fz_context* ctx) { readLinks(ctx, m_handle->document, *m_handle, links); });
    return error ? std::vector<PDFLink>() : links;
}

Result<PDFDisplayList> PDFPage::contentDisplayList(const Cancellation& cancellation)
{
    auto content = std::make_shared<RecordedList>();
    auto list = std::make_shared<DisplayListHandle>();
    const std::lock_guard lock(m_handle->document.mutex);
    const fz_rect rect = m_handle->geometry().displayRect;
    CookieScope scope(cancellation);
    const auto error = engine::attempt(scope, [&](fz_context* ctx) {
        content->record(ctx, rect, runContents, m_handle->loadContents(ctx), scope.cookie());
    });
    // Content that ends too early looks like a page with little on it, so what was recorded proves nothing.
    if (!m_handle->document.source->isReadable())
        return changedMeanwhile();
    if (error)
        return *error;
    list->displaySize = sizeOf(rect);
    auto group = std::make_shared<ListGroup>();
    group->add(content);
    list->groups.push_back(std::move(group));
    return PDFDisplayList(std::move(list));
}

Result<PDFDisplayList> PDFPage::annotationDisplayList(const Cancellation& cancellation)
{
    const std::lock_guard lock(m_handle->document.mutex);
    CookieScope scope(cancellation);
    // What could not be written waits for the next attempt; the rest is shown all the same.
    static_cast<void>(m_handle->document.annotations.flush(scope));
    auto list = m_handle->document.annotationLists.record(*m_handle, scope);
    if (!m_handle->document.source->isReadable())
        return changedMeanwhile();
    if (!list)
        return list.error();
    return PDFDisplayList(*std::move(list));
}

Result<std::vector<PDFFormField>> PDFPage::formFields(const Cancellation& cancellation) const
{
    const std::lock_guard lock(m_handle->document.mutex);
    CookieScope scope(cancellation);
    static_cast<void>(m_handle->document.annotations.flush(scope));
    fields::PageRecord record;
    if (auto error = engine::attempt(scope, [&](fz_context* ctx) {
            fields::readPage(ctx, m_handle->document, m_handle->object, m_handle->index, record);
        }))
        return *error;
    return fields::fieldsOf(std::move(record), pageToDisplay());
}

} // namespace pdf
