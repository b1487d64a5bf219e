// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/AnnotationStore.h"

#include "pdf/Engine.h"
#include "pdf/FieldTree.h"
#include "pdf/Handles.h"
#include "pdf/LastStep.h"
#include "pdf/Limits.h"

#include <algorithm>
#include <functional>
#include <utility>

namespace pdf {
namespace {

PDFAnnotation::Subtype subtypeOf(const QString& type)
{
    if (type == QLatin1String("FreeText"))
        return PDFAnnotation::Subtype::freeText;
    if (type == QLatin1String("Widget"))
        return PDFAnnotation::Subtype::widget;
    if (type == QLatin1String("Stamp"))
        return PDFAnnotation::Subtype::stamp;
    return PDFAnnotation::Subtype::other;
}

const char* fieldValue(fz_context* ctx, pdf_obj* widget)
{
    return pdf_to_text_string(ctx, fields::inherited(ctx, widget, PDF_NAME(V)));
}

QString textOf(const char* value)
{
    return QString::fromUtf8(value).replace(QLatin1String("\r\n"), QLatin1String("\n")).replace(u'\r', u'\n');
}

} // namespace

AnnotationStore::AnnotationStore(DocumentHandle& document)
    : m_document(document)
{}

void AnnotationStore::clear()
{
    m_names.clear();
    m_entries.clear();
}

void AnnotationStore::enqueue(std::shared_ptr<PDFAnnotation> annotation)
{
    const std::lock_guard lock(m_pendingMutex);
    if (m_isPending.insert(annotation.get()).second)
        m_pending.push_back(std::move(annotation));
}

std::size_t AnnotationStore::NameHash::operator()(const Name& name) const
{
    return std::hash<const pdf_obj*>()(name.object) ^ std::hash<int>()(name.number);
}

AnnotationStore::Name AnnotationStore::nameOf(pdf_obj* object)
{
    fz_context* ctx = engine::context();
    return pdf_is_indirect(ctx, object) ? Name{pdf_to_num(ctx, object), nullptr} : Name{0, object};
}

AnnotationStore::Entry* AnnotationStore::find(const PDFAnnotation& annotation)
{
    const auto place = m_entries.find(&annotation);
    if (place == m_entries.end())
        return nullptr;
    if (place->second.annotation.lock().get() == &annotation)
        return &place->second;
    // One that is gone was where this one is now.
    erase(&annotation);
    return nullptr;
}

std::vector<std::shared_ptr<PDFAnnotation>> AnnotationStore::findLive(pdf_obj* object) const
{
    std::vector<std::shared_ptr<PDFAnnotation>> found;
    const auto [begin, end] = m_names.equal_range(nameOf(object));
    for (auto place = begin; place != end; ++place) {
        if (auto live = m_entries.at(place->second).annotation.lock())
            found.push_back(std::move(live));
    }
    return found;
}

AnnotationStore::Entry&
AnnotationStore::insert(const std::shared_ptr<PDFAnnotation>& annotation, int pageIndex, ObjectHandle object)
{
    erase(annotation.get());
    Entry& entry = m_entries[annotation.get()];
    entry.annotation = annotation;
    entry.pageIndex = pageIndex;
    entry.object = std::move(object);
    // Last, so that where there is no memory for it no name is left that stands for no entry.
    m_names.emplace(nameOf(entry.object.get()), annotation.get());
    return entry;
}

void AnnotationStore::erase(const PDFAnnotation* annotation)
{
    const auto entry = m_entries.find(annotation);
    if (entry == m_entries.end())
        return;
    const auto [begin, end] = m_names.equal_range(nameOf(entry->second.object.get()));
    const auto isName = [&](const auto& name) { return name.second == annotation; };
    if (const auto name = std::find_if(begin, end, isName); name != end)
        m_names.erase(name);
    m_entries.erase(entry);
}

void AnnotationStore::forgetReleased()
{
    std::vector<const PDFAnnotation*> released;
    for (const auto& [annotation, entry] : m_entries) {
        if (entry.annotation.expired())
            released.push_back(annotation);
    }
    for (const PDFAnnotation* annotation : released)
        erase(annotation);
}

pdf_obj* AnnotationStore::pageObject(fz_context* ctx, int pageIndex)
{
    pdf_obj* page = m_document.pages.find(ctx, pageIndex);
    if (!page)
        fz_throw(ctx, FZ_ERROR_GENERIC, "there is no such page");
    return page;
}

std::optional<PDFError> AnnotationStore::flush(CookieScope& scope)
{
    std::list<std::shared_ptr<PDFAnnotation>> pending;
    {
        const std::lock_guard lock(m_pendingMutex);
        pending.swap(m_pending);
    }
    // Whatever was made of the pages before is out of date.
    if (!pending.empty())
        ++m_document.changes;
    std::optional<PDFError> firstError;
    std::list<std::shared_ptr<PDFAnnotation>> failed;
    while (!pending.empty()) {
        PDFAnnotation& next = *pending.front();
        std::set<const PDFAnnotation*>::node_type name;
        {
            // Whatever is done to it from now on has it flushed again.
            const std::lock_guard lock(m_pendingMutex);
            name = m_isPending.extract(&next);
        }
        // An operation that was stopped changes nothing any more.
        auto error = scope.interruption();
        if (!error)
            error = flush(next, scope);
        if (!error) {
            pending.pop_front();
            continue;
        }
        if (!firstError)
            firstError = std::move(error);
        const std::lock_guard lock(m_pendingMutex);
        if (m_isPending.insert(std::move(name)).inserted)
            failed.splice(failed.end(), pending, pending.begin());
        else
            pending.pop_front();
    }
    const std::lock_guard lock(m_pendingMutex);
    m_pending.splice(m_pending.begin(), failed);
    return firstError;
}

std::optional<PDFError> AnnotationStore::flush(PDFAnnotation& annotation, CookieScope& scope)
{
    const State state = takeState(annotation);
    std::optional<PDFError> error;
    // Drawing calls what others have written, and takes memory. What it throws is an error, too.
    if (auto failure =
            engine::attemptLastStep(scope, [&](fz_context*) { error = write(annotation, state, scope); }))
        error = std::move(failure);
    if (!error)
        return std::nullopt;
    giveBack(annotation, state.changes);
    if (const Entry* entry = find(annotation); entry && !entry->isOnPage)
        discard(annotation, *entry);
    return error;
}

std::optional<PDFError>
AnnotationStore::write(PDFAnnotation& annotation, const State& state, CookieScope& scope)
{
    Entry* entry = find(annotation);
    std::optional<PDFError> error;
    if (entry && entry->pageIndex != state.pageIndex) {
        error = remove(annotation, *entry, scope);
        entry = nullptr;
    }
    if (!error && state.pageIndex >= 0) {
        if (annotation.m_isOwn)
            error = writeOwn(annotation, state, entry, scope);
        else if (entry)
            error = writeFound(annotation, state, *entry, scope);
        // One from the file that was taken from its page is gone from the document for good.
    }
    return error;
}

AnnotationStore::State AnnotationStore::takeState(PDFAnnotation& annotation)
{
    const std::lock_guard lock(annotation.m_mutex);
    return {annotation.m_properties, std::exchange(annotation.m_changes, {}), annotation.m_pageIndex};
}

void AnnotationStore::giveBack(PDFAnnotation& annotation, const PDFAnnotation::Changes& changes)
{
    const std::lock_guard lock(annotation.m_mutex);
    annotation.m_changes.bounds |= changes.bounds;
    annotation.m_changes.look |= changes.look;
    annotation.m_changes.value |= changes.value;
    annotation.m_changes.isReadOnly |= changes.isReadOnly;
}

std::optional<PDFError>
AnnotationStore::remove(const PDFAnnotation& annotation, Entry& entry, CookieScope& scope)
{
    pdf_obj* object = entry.object.get();
    auto made = m_document.appearances.extract(nameOf(object).number);
    const annotations::ObjectRange appearance = made ? made.mapped() : annotations::ObjectRange();
    auto error = engine::attemptLastStep(scope, [&](fz_context* ctx) {
        annotations::remove(ctx, m_document.document, pageObject(ctx, entry.pageIndex), object, appearance);
    });
    if (error) {
        if (made)
            m_document.appearances.insert(std::move(made));
        return error;
    }
    erase(&annotation);
    m_document.annotationLog.noteLists();
    return std::nullopt;
}

std::vector<std::shared_ptr<PDFAnnotation>>
AnnotationStore::annotations(CookieScope& scope, int pageIndex, const std::shared_ptr<PDFDocument>& document)
{
    forgetReleased();
    std::vector<std::shared_ptr<PDFAnnotation>> result;
    int count = 0;
    pdf_obj* array = nullptr;
    if (engine::attempt(scope, [&](fz_context* ctx) {
            array = pdf_dict_get(ctx, pageObject(ctx, pageIndex), PDF_NAME(Annots));
            count = pdf_array_len(ctx, array);
        }))
        return result;
    for (int i = 0; i < count && !scope.isStopped(); ++i) {
        Found found;
        const auto error = engine::attempt(scope, [&](fz_context* ctx) {
            pdf_obj* object = pdf_array_get(ctx, array, i);
            if (i < limits::annotationsPerPage || m_names.contains(nameOf(object)))
                read(ctx, object, found);
        });
        if (!error && found.object)
            result.push_back(annotationOf(found, pageIndex, document));
    }
    return result;
}

void AnnotationStore::read(fz_context* ctx, pdf_obj* object, Found& found)
{
    pdf_obj* type = pdf_dict_get(ctx, object, PDF_NAME(Subtype));
    if (!pdf_is_name(ctx, type))
        return;
    found.type = pdf_to_name(ctx, type);
    found.bounds = annotations::bounds(ctx, object);
    found.contents = pdf_dict_get_text_string(ctx, object, PDF_NAME(Contents));
    if (pdf_name_eq(ctx, type, PDF_NAME(Widget))) {
        found.value = fieldValue(ctx, object);
        found.isReadOnly = fields::flags(ctx, object) & annotations::fieldIsReadOnly;
    }
    found.object = object;
}

std::shared_ptr<PDFAnnotation>
AnnotationStore::annotationOf(const Found& found, int pageIndex, const std::shared_ptr<PDFDocument>& document)
{
    const auto [begin, end] = m_names.equal_range(nameOf(found.object));
    for (auto place = begin; place != end; ++place) {
        const Entry& entry = m_entries.at(place->second);
        if (entry.pageIndex != pageIndex)
            continue;
        if (auto live = entry.annotation.lock())
            return live;
    }
    const QString type = QString::fromUtf8(found.type);
    std::shared_ptr<PDFAnnotation> annotation(new PDFAnnotation(type, subtypeOf(type)));
    annotation->m_properties.bounds = found.bounds;
    annotation->m_properties.contents = QString::fromUtf8(found.contents);
    annotation->m_properties.widgetStringValue = textOf(found.value);
    annotation->m_properties.isReadOnly = found.isReadOnly;
    annotation->m_document = document;
    annotation->m_pageIndex = pageIndex;
    insert(annotation, pageIndex, ObjectHandle(pdf_keep_obj(engine::context(), found.object))).isOnPage =
        true;
    return annotation;
}

void AnnotationStore::rereadValue(CookieScope& scope, pdf_obj* widget)
{
    const auto live = findLive(widget);
    if (live.empty())
        return;
    QString value;
    if (engine::attemptLastStep(scope, [&](fz_context* ctx) { value = textOf(fieldValue(ctx, widget)); }))
        return;
    for (const auto& annotation : live) {
        const std::lock_guard lock(annotation->m_mutex);
        // What was set meanwhile comes after.
        if (!annotation->m_changes.value)
            annotation->m_properties.widgetStringValue = value;
    }
}

double AnnotationStore::backgroundOpacity(pdf_obj* widget) const
{
    for (const auto& annotation : findLive(widget)) {
        if (annotation->m_isOwn)
            return annotation->backgroundColor().alphaF();
    }
    return 1.0;
}

} // namespace pdf
