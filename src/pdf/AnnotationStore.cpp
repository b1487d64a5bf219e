// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/AnnotationStore.h"

#include "pdf/AnnotationPicture.h"
#include "pdf/Engine.h"
#include "pdf/Handles.h"
#include "pdf/ToUnicode.h"

#include <QFontInfo>

#include <algorithm>
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

/// One of the fonts that every viewer has, size and colour.
QByteArray defaultAppearance(const QFont& font, const QColor& color)
{
    const QFontInfo info(font);
    const double size = font.pointSizeF() > 0 ? font.pointSizeF() : font.pixelSize();
    const auto number = [](double value) { return QByteArray::number(value, 'f', 3); };
    return QByteArray(info.fixedPitch() ? "/Cour " : "/Helv ") + number(size) + " Tf " +
           number(color.redF()) + ' ' + number(color.greenF()) + ' ' + number(color.blueF()) + " rg";
}

int quaddingOf(Qt::AlignmentFlag alignment)
{
    return alignment == Qt::AlignHCenter ? 1 : alignment == Qt::AlignRight ? 2 : 0;
}

} // namespace

AnnotationStore::AnnotationStore(DocumentHandle& document)
    : m_document(document)
{}

void AnnotationStore::clear()
{
    m_entries.clear();
}

void AnnotationStore::enqueue(std::shared_ptr<PDFAnnotation> annotation)
{
    const std::lock_guard lock(m_pendingMutex);
    if (std::find(m_pending.begin(), m_pending.end(), annotation) == m_pending.end())
        m_pending.push_back(std::move(annotation));
}

AnnotationStore::Entry* AnnotationStore::find(const PDFAnnotation& annotation)
{
    const auto entry = std::find_if(m_entries.begin(), m_entries.end(), [&](const Entry& candidate) {
        return candidate.annotation.lock().get() == &annotation;
    });
    return entry == m_entries.end() ? nullptr : &*entry;
}

void AnnotationStore::forgetReleased()
{
    std::erase_if(m_entries, [](const Entry& entry) { return entry.annotation.expired(); });
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
    std::vector<std::shared_ptr<PDFAnnotation>> pending;
    {
        const std::lock_guard lock(m_pendingMutex);
        pending.swap(m_pending);
    }
    std::optional<PDFError> firstError;
    for (auto& annotation : pending) {
        // An operation that was stopped changes nothing any more.
        auto error = scope.interruption();
        if (!error)
            error = flush(*annotation, scope);
        if (!error)
            continue;
        enqueue(std::move(annotation));
        if (!firstError)
            firstError = std::move(error);
    }
    // Whatever was made of the pages before is out of date.
    if (!pending.empty())
        ++m_document.changes;
    return firstError;
}

std::optional<PDFError> AnnotationStore::flush(PDFAnnotation& annotation, CookieScope& scope)
{
    State state = takeState(annotation);
    Entry* entry = find(annotation);
    if (entry && entry->pageIndex != state.pageIndex) {
        if (auto error = remove(*entry, scope))
            return error;
        entry = nullptr;
    }
    if (state.pageIndex < 0)
        return std::nullopt;
    auto error =
        annotation.m_isOwn ? writeOwn(annotation, state, entry, scope) : writeFound(state, entry, scope);
    if (error)
        giveBack(annotation, state.changes);
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
}

std::optional<PDFError> AnnotationStore::remove(Entry& entry, CookieScope& scope)
{
    bool isDone = false;
    auto error = engine::attempt(scope, [&](fz_context* ctx) {
        pdf_obj* page = pageObject(ctx, entry.pageIndex);
        annotations::remove(ctx, m_document.document, page, entry.object.get(), entry.appearance);
        isDone = true;
    });
    // An operation that is stopped at its end has an error and is done all the same.
    if (!isDone)
        return error;
    m_entries.erase(m_entries.begin() + (&entry - m_entries.data()));
    return std::nullopt;
}

std::optional<PDFError> AnnotationStore::writeFound(const State& state, Entry* entry, CookieScope& scope)
{
    // One that was taken from its page is gone from the document for good.
    if (!entry)
        return std::nullopt;
    const QByteArray contents = state.properties.contents.toUtf8();
    return engine::attempt(scope, [&](fz_context* ctx) {
        if (state.changes.bounds)
            annotations::writeBounds(ctx, entry->object.get(), state.properties.bounds);
        if (state.changes.look)
            annotations::writeContents(ctx, entry->object.get(), contents);
    });
}

std::optional<PDFError>
AnnotationStore::writeOwn(PDFAnnotation& annotation, State& state, Entry* entry, CookieScope& scope)
{
    const QSizeF size = state.properties.bounds.size();
    if (entry && !state.changes.look && !state.changes.value && size == entry->drawnSize)
        return engine::attempt(scope, [&](fz_context* ctx) {
            annotations::writeBounds(ctx, entry->object.get(), state.properties.bounds);
        });

    annotations::Content content = contentOf(annotation, state, entry == nullptr);
    content.picture = drawPicture(size, [&](QPainter& painter) { annotation.draw(painter, size); });
    if (content.picture.file.isEmpty())
        return PDFError{PDFError::Code::damaged, QStringLiteral("the annotation cannot be drawn")};
    if (!entry) {
        entry = &m_entries.emplace_back();
        entry->annotation = annotation.weak_from_this();
        entry->pageIndex = state.pageIndex;
    }
    auto error = engine::attempt(scope, [&](fz_context* ctx) {
        if (!entry->object.get())
            entry->object = ObjectHandle(
                annotations::add(ctx, m_document.document, pageObject(ctx, state.pageIndex), content));
        annotations::write(ctx, m_document.document, entry->object.get(), content, entry->appearance);
    });
    if (!error && !content.picture.text.empty())
        error = writeToUnicode(
            scope, m_document.document, entry->object.get(), annotations::picturePath, content.picture.text);
    if (!error)
        entry->drawnSize = size;
    else if (!entry->object.get())
        m_entries.pop_back();
    return error;
}

annotations::Content
AnnotationStore::contentOf(const PDFAnnotation& annotation, const State& state, bool isNew) const
{
    const auto& properties = state.properties;
    annotations::Content content;
    content.subtype = annotation.type().toLatin1();
    content.bounds = properties.bounds;
    content.contents = properties.contents.toUtf8();
    content.borderWidth = properties.borderWidth;
    content.isField = annotation.subtype() == PDFAnnotation::Subtype::widget;
    if (content.isField || annotation.subtype() == PDFAnnotation::Subtype::freeText) {
        content.defaultAppearance = defaultAppearance(properties.font, properties.fontColor);
        content.quadding = quaddingOf(properties.alignment);
    }
    if (content.isField) {
        if (isNew || state.changes.value)
            content.value = properties.widgetStringValue.toUtf8();
        content.isReadOnly = properties.isReadOnly;
        if (properties.backgroundColor.alpha() > 0)
            content.background = properties.backgroundColor;
    }
    return content;
}

std::vector<std::shared_ptr<PDFAnnotation>>
AnnotationStore::annotations(CookieScope& scope, int pageIndex, const std::shared_ptr<PDFDocument>& document)
{
    std::vector<std::shared_ptr<PDFAnnotation>> result;
    int count = 0;
    pdf_obj* array = nullptr;
    forgetReleased();
    auto error = engine::attempt(scope, [&](fz_context* ctx) {
        array = pdf_dict_get(ctx, pageObject(ctx, pageIndex), PDF_NAME(Annots));
        count = pdf_array_len(ctx, array);
    });
    for (int i = 0; i < count && !error; ++i) {
        Found found;
        if (engine::attempt(
                scope, [&](fz_context* ctx) { read(ctx, pdf_array_get(ctx, array, i), found); }) ||
            !found.object)
            continue;
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
    found.value = pdf_dict_get_text_string(ctx, object, PDF_NAME(V));
    found.flags = pdf_dict_get_int(ctx, object, PDF_NAME(Ff));
    found.object = object;
}

std::shared_ptr<PDFAnnotation>
AnnotationStore::annotationOf(const Found& found, int pageIndex, const std::shared_ptr<PDFDocument>& document)
{
    fz_context* ctx = engine::context();
    for (const Entry& entry : m_entries) {
        const bool isSame = pdf_is_indirect(ctx, found.object)
                                ? pdf_to_num(ctx, entry.object.get()) == pdf_to_num(ctx, found.object)
                                : entry.object.get() == found.object;
        if (!isSame || entry.pageIndex != pageIndex)
            continue;
        if (auto live = entry.annotation.lock())
            return live;
    }
    const QString type = QString::fromUtf8(found.type);
    std::shared_ptr<PDFAnnotation> annotation(new PDFAnnotation(type, subtypeOf(type)));
    annotation->m_properties.bounds = found.bounds;
    annotation->m_properties.contents = QString::fromUtf8(found.contents);
    annotation->m_properties.widgetStringValue = QString::fromUtf8(found.value);
    annotation->m_properties.isReadOnly = (found.flags & annotations::fieldIsReadOnly) != 0;
    annotation->m_document = document;
    annotation->m_pageIndex = pageIndex;
    m_entries.push_back({annotation, pageIndex, ObjectHandle(pdf_keep_obj(ctx, found.object)), {}, {}});
    return annotation;
}

} // namespace pdf
