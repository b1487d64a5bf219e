// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/AnnotationRecorder.h"

#include "pdf/Engine.h"
#include "pdf/Handles.h"

#include <algorithm>
#include <utility>

namespace pdf {
namespace {

// As many as a view shows, as a rule, and one that is turned to.
constexpr std::size_t keptPages = 4;

// A change costs as much as to walk over its group and to walk over the groups.
constexpr std::size_t groupSize = 128;

void runAnnotation(fz_context* ctx, void* annotation, fz_device* device, fz_cookie* cookie)
{
    pdf_run_annot(ctx, static_cast<pdf_annot*>(annotation), device, fz_identity, cookie);
}

void dropPage(pdf_page* page)
{
    if (page)
        fz_drop_page(engine::context(), &page->super);
}

struct PageDropper
{
    void operator()(pdf_page* page) const { dropPage(page); }
};

} // namespace

AnnotationRecorder::AnnotationRecorder(DocumentHandle& document)
    : m_document(document)
{}

void AnnotationRecorder::clear()
{
    for (const Page& page : m_pages)
        dropPage(page.page);
    m_pages.clear();
}

AnnotationRecorder::Page& AnnotationRecorder::find(int index)
{
    const auto place =
        std::find_if(m_pages.begin(), m_pages.end(), [&](const Page& page) { return page.index == index; });
    if (place != m_pages.end()) {
        m_pages.splice(m_pages.begin(), m_pages, place);
        return m_pages.front();
    }
    m_pages.emplace_front().index = index;
    if (m_pages.size() > keptPages) {
        dropPage(m_pages.back().page);
        m_pages.pop_back();
    }
    return m_pages.front();
}

Result<std::shared_ptr<const DisplayListHandle>>
AnnotationRecorder::record(PageHandle& handle, CookieScope& scope)
{
    Page& page = find(handle.index);
    if (!dropChanged(page, scope)) {
        if (auto error = load(page, handle, scope))
            return *error;
    }
    const fz_rect area = handle.geometry().displayRect;
    auto result = std::make_shared<DisplayListHandle>();
    result->displaySize = {double(area.x1 - area.x0), double(area.y1 - area.y0)};
    for (std::size_t i = 0; i < page.groups.size(); ++i) {
        if (!page.groups[i]) {
            if (auto error = record(page, i, area, scope))
                return *error;
        }
        if (!page.groups[i]->parts.empty())
            result->groups.push_back(page.groups[i]);
    }
    return std::shared_ptr<const DisplayListHandle>(std::move(result));
}

/// Drops the lists of what has changed. False where the page is to be loaded anew.
bool AnnotationRecorder::dropChanged(Page& page, CookieScope& scope) const
{
    const AnnotationLog& log = m_document.annotationLog;
    if (!page.page)
        return false;
    if (!log.isUsable(page.stamp)) {
        page.pieces.clear();
        page.places.clear();
        page.groups.clear();
        return false;
    }
    bool isWhole = log.areListsCurrent(page.stamp);
    for (const int number : log.changedSince(page.stamp)) {
        const auto place = page.places.find(number);
        if (place == page.places.end())
            continue;
        Piece& piece = page.pieces[place->second];
        piece.list = nullptr;
        page.groups[place->second / groupSize] = nullptr;
        // MuPDF makes a missing appearance when it loads a page.
        bool hasAppearance = false;
        const auto error = engine::attempt(scope, [&](fz_context* ctx) {
            hasAppearance = pdf_dict_get(ctx, pdf_annot_obj(ctx, piece.annotation), PDF_NAME(AP));
        });
        isWhole &= hasAppearance && !error;
    }
    if (isWhole)
        page.stamp = log.now();
    return isWhole;
}

/// Takes over the lists that there are.
std::optional<PDFError> AnnotationRecorder::load(Page& page, PageHandle& handle, CookieScope& scope) const
{
    std::unique_ptr<pdf_page, PageDropper> loaded;
    if (auto error = engine::attempt(scope, [&](fz_context* ctx) {
            pdf_page* contents = handle.loadContents(ctx);
            fz_keep_page(ctx, &contents->super);
            loaded.reset(contents);
        }))
        return error;
    std::vector<Piece> pieces;
    std::unordered_map<int, std::size_t> places;
    fz_context* ctx = engine::context();
    for (pdf_annot* first : {pdf_first_annot(ctx, loaded.get()), pdf_first_widget(ctx, loaded.get())}) {
        for (pdf_annot* annotation = first; annotation; annotation = pdf_next_annot(ctx, annotation)) {
            const int number = pdf_to_num(ctx, pdf_annot_obj(ctx, annotation));
            const auto old = number == 0 ? page.places.end() : page.places.find(number);
            if (number != 0)
                places.emplace(number, pieces.size());
            pieces.push_back(
                {annotation, number, old == page.places.end() ? nullptr : page.pieces[old->second].list});
        }
    }
    std::vector<std::shared_ptr<const ListGroup>> groups((pieces.size() + groupSize - 1) / groupSize);
    // From here on nothing fails: the parts fit together, or are those from before.
    dropPage(std::exchange(page.page, loaded.release()));
    page.pieces = std::move(pieces);
    page.places = std::move(places);
    page.groups = std::move(groups);
    page.stamp = m_document.annotationLog.now();
    return std::nullopt;
}

std::optional<PDFError>
AnnotationRecorder::record(Page& page, std::size_t group, fz_rect area, CookieScope& scope)
{
    auto recorded = std::make_shared<ListGroup>();
    const std::size_t end = std::min(page.pieces.size(), (group + 1) * groupSize);
    for (std::size_t i = group * groupSize; i < end; ++i) {
        Piece& piece = page.pieces[i];
        if (!piece.list) {
            if (auto error = record(piece, area, scope))
                return error;
        }
        if (!fz_is_empty_rect(piece.list->area()))
            recorded->add(piece.list);
    }
    page.groups[group] = std::move(recorded);
    return std::nullopt;
}

std::optional<PDFError> AnnotationRecorder::record(Piece& piece, fz_rect area, CookieScope& scope)
{
    auto list = std::make_shared<RecordedList>();
    if (auto error = engine::attempt(scope, [&](fz_context* ctx) {
            list->record(ctx, area, runAnnotation, piece.annotation, scope.cookie());
            list->measure(ctx, scope.cookie());
        }))
        return error;
    piece.list = std::move(list);
    return std::nullopt;
}

} // namespace pdf
