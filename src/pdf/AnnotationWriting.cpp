// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/AnnotationChange.h"
#include "pdf/AnnotationPicture.h"
#include "pdf/AnnotationStore.h"
#include "pdf/Engine.h"
#include "pdf/FieldPainter.h"
#include "pdf/FieldTree.h"
#include "pdf/FormWriter.h"
#include "pdf/Handles.h"
#include "pdf/LastStep.h"
#include "pdf/ToUnicode.h"

#include <QFontInfo>

// How the store writes an annotation's changes to the document.
namespace pdf {
namespace {

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

void writeReadOnly(fz_context* ctx, AnnotationChange& change, pdf_obj* widget, bool isReadOnly)
{
    pdf_obj* field = fields::fieldOf(ctx, widget);
    change.remember(ctx, field);
    const int others = fields::flags(ctx, widget) & ~annotations::fieldIsReadOnly;
    pdf_dict_put_int(ctx, field, PDF_NAME(Ff), others | (isReadOnly ? annotations::fieldIsReadOnly : 0));
}

} // namespace

std::optional<PDFError> AnnotationStore::writeFound(
    const PDFAnnotation& annotation, const State& state, const Entry& entry, CookieScope& scope)
{
    pdf_obj* object = entry.object.get();
    const bool isField = annotation.subtype() == PDFAnnotation::Subtype::widget;
    const bool changesFlag = isField && state.changes.isReadOnly;
    const QByteArray contents = state.properties.contents.toUtf8();
    bool isResized = false;
    AnnotationChange change(m_document);
    auto error = engine::attempt(scope, [&](fz_context* ctx) {
        change.remember(ctx, object);
        change.touch(ctx, object);
        if (state.changes.bounds) {
            isResized = annotations::bounds(ctx, object).size() != state.properties.bounds.size();
            annotations::writeBounds(ctx, object, state.properties.bounds);
        }
        if (state.changes.look)
            annotations::writeContents(ctx, object, contents);
        if (changesFlag)
            writeReadOnly(ctx, change, object, state.properties.isReadOnly);
    });
    if (!error && isField && (isResized || changesFlag))
        error = FieldPainter(m_document, scope).paint(change, object);
    if (error)
        return error;
    change.commit();
    return isField && state.changes.value ? writeFoundValue(entry, state, scope) : std::nullopt;
}

std::optional<PDFError>
AnnotationStore::writeFoundValue(const Entry& entry, const State& state, CookieScope& scope)
{
    pdf_obj* object = entry.object.get();
    const auto pages =
        FormWriter(m_document, scope).set(object, entry.pageIndex, state.properties.widgetStringValue);
    if (!pages && pages.error().code != PDFError::Code::refused)
        return pages.error();
    // Where the field does not take it as it is, the field is right.
    rereadValue(scope, object);
    return std::nullopt;
}

std::optional<PDFError> AnnotationStore::move(const State& state, const Entry& entry, CookieScope& scope)
{
    AnnotationChange change(m_document);
    auto error = engine::attemptLastStep(scope, [&](fz_context* ctx) {
        change.remember(ctx, entry.object.get());
        change.touch(ctx, entry.object.get());
        annotations::writeBounds(ctx, entry.object.get(), state.properties.bounds);
    });
    if (!error)
        change.commit();
    return error;
}

std::optional<PDFError>
AnnotationStore::writeOwn(PDFAnnotation& annotation, const State& state, Entry* entry, CookieScope& scope)
{
    const PDFAnnotation::Changes& changes = state.changes;
    const QSizeF size = state.properties.bounds.size();
    const bool isNew = !entry;
    if (!isNew && !changes.look && !changes.value && !changes.isReadOnly && size == entry->drawnSize)
        return move(state, *entry, scope);

    const annotations::Content content = contentOf(annotation, state, isNew);
    if (isNew) {
        pdf_obj* object = nullptr;
        if (auto error = engine::attemptLastStep(scope, [&](fz_context* ctx) {
                object =
                    annotations::make(ctx, m_document.document, pageObject(ctx, state.pageIndex), content);
            }))
            return error;
        entry = &insert(annotation.shared_from_this(), state.pageIndex, ObjectHandle(object));
    }
    pdf_obj* object = entry->object.get();
    AnnotationChange change(m_document);
    auto error = engine::attempt(scope, [&](fz_context* ctx) {
        change.remember(ctx, object);
        change.touch(ctx, object);
        annotations::write(ctx, object, content);
    });
    if (!error)
        error = draw(change, annotation, object, size, scope);
    if (!error && isNew)
        error = engine::attemptLastStep(scope, [&](fz_context* ctx) {
            annotations::attach(ctx, m_document.document, pageObject(ctx, state.pageIndex), object, content);
        });
    if (error)
        return error;
    change.commit();
    entry->isOnPage = true;
    entry->drawnSize = size;
    if (isNew)
        m_document.annotationLog.noteLists();
    if (content.value)
        rereadValue(scope, object);
    return std::nullopt;
}

/// Of an annotation that was not put on its page.
void AnnotationStore::discard(const PDFAnnotation& annotation, const Entry& entry)
{
    fz_context* ctx = engine::context();
    fz_try(ctx)
    {
        pdf_delete_object(ctx, m_document.document, pdf_to_num(ctx, entry.object.get()));
    }
    fz_catch(ctx)
    {
        // Nothing names it, so it may stay.
    }
    erase(&annotation);
}

std::optional<PDFError> AnnotationStore::draw(
    AnnotationChange& change, const PDFAnnotation& annotation, pdf_obj* object, const QSizeF& size,
    CookieScope& scope)
{
    if (annotation.subtype() == PDFAnnotation::Subtype::widget)
        return FieldPainter(m_document, scope).paint(change, object);
    const DrawnPage picture = drawPicture(size, [&](QPainter& painter) { annotation.draw(painter, size); });
    if (picture.file.isEmpty())
        return PDFError{PDFError::Code::damaged, QStringLiteral("the annotation cannot be drawn")};
    auto error = engine::attempt(scope, [&](fz_context* ctx) {
        change.beginAppearance(ctx, object);
        annotations::writePicture(ctx, m_document.document, object, picture, size);
        change.endAppearance(ctx);
    });
    if (!error && !picture.text.empty())
        error = writeToUnicode(scope, m_document.document, object, annotations::picturePath, picture.text);
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
            content.value = QString(properties.widgetStringValue).replace(u'\n', u' ').toUtf8();
        content.isReadOnly = properties.isReadOnly;
        if (properties.backgroundColor.alpha() > 0)
            content.background = properties.backgroundColor;
    }
    return content;
}

} // namespace pdf
