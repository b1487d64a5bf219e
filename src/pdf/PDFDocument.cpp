// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/PDFDocument.h"

#include "pdf/DocumentWriter.h"
#include "pdf/Engine.h"
#include "pdf/FieldTree.h"
#include "pdf/FileName.h"
#include "pdf/FileStream.h"
#include "pdf/FormWriter.h"
#include "pdf/Handles.h"
#include "pdf/PrintComposer.h"
#include "pdf/TextIndex.h"

#include <utility>

namespace pdf {
namespace {

/// The answer to a question about an unlocked document; false where it cannot be given.
bool isTrue(DocumentHandle& handle, bool (*question)(fz_context* ctx, pdf_document* document))
{
    const std::lock_guard lock(handle.mutex);
    if (handle.isLocked)
        return false;
    bool answer = false;
    CookieScope scope{Cancellation()};
    const auto error =
        engine::attempt(scope, [&](fz_context* ctx) { answer = question(ctx, handle.document); });
    return !error && answer;
}

} // namespace

PDFDocument::PDFDocument(std::unique_ptr<DocumentHandle> handle)
    : m_handle(std::move(handle))
{}

PDFDocument::~PDFDocument()
{
    if (m_textIndex)
        m_textIndex->stop();
}

Result<std::shared_ptr<PDFDocument>> PDFDocument::open(const QString& path, const Cancellation& cancellation)
{
    auto source = SourceFile::open(path);
    if (!source)
        return source.error();
    return read(path, *std::move(source), cancellation);
}

Result<std::shared_ptr<PDFDocument>>
PDFDocument::read(const QString& path, std::shared_ptr<SourceFile> source, const Cancellation& cancellation)
{
    auto handle = std::make_unique<DocumentHandle>();
    handle->path = path;
    handle->source = std::move(source);
    handle->ownFile = handle->source->identity();
    CookieScope scope(cancellation);
    auto error = engine::attempt(scope, [&](fz_context* ctx) {
        fz_stream* stream = newFileStream(ctx, handle->source);
        fz_try(ctx)
        {
            handle->document = pdf_open_document_with_stream(ctx, stream);
        }
        fz_always(ctx)
        {
            fz_drop_stream(ctx, stream);
        }
        fz_catch(ctx)
        {
            fz_rethrow(ctx);
        }
        handle->isLocked = pdf_needs_password(ctx, handle->document) != 0;
        if (!handle->isLocked)
            handle->pages.load(ctx, handle->document);
    });
    handle->pageCount = handle->pages.pageCount();
    if (error) {
        if (error->code == PDFError::Code::damaged)
            error->code = PDFError::Code::notPDF;
        return *error;
    }
    return std::shared_ptr<PDFDocument>(new PDFDocument(std::move(handle)));
}

std::shared_ptr<PDFDocument> PDFDocument::openAgain(const Cancellation& cancellation)
{
    QString password;
    {
        const std::lock_guard lock(m_handle->mutex);
        if (m_handle->isLocked)
            return nullptr;
        password = m_handle->password;
    }
    auto document = read(m_handle->path, m_handle->source, cancellation);
    if (!document || !(*document)->unlock(password))
        return nullptr;
    return *std::move(document);
}

QUrl PDFDocument::documentURL() const
{
    return fileURL(m_handle->path);
}

bool PDFDocument::isLocked() const
{
    return m_handle->isLocked;
}

bool PDFDocument::unlock(const QString& password)
{
    const std::lock_guard lock(m_handle->mutex);
    if (!m_handle->isLocked)
        return true;
    const QByteArray text = password.toUtf8();
    CookieScope scope{Cancellation()};
    const auto error = engine::attempt(scope, [&](fz_context* ctx) {
        const int roles = pdf_authenticate_password(ctx, m_handle->document, text.constData());
        if (roles == 0)
            fz_throw(ctx, FZ_ERROR_GENERIC, "the password is wrong");
        constexpr int ownerRole = 4;
        m_handle->isOwner = roles & ownerRole;
        m_handle->pages.load(ctx, m_handle->document);
    });
    if (error)
        return false;
    m_handle->pageCount = m_handle->pages.pageCount();
    m_handle->isLocked = false;
    m_handle->password = password;
    const std::lock_guard textLock(m_textMutex);
    if (auto index = std::exchange(m_textIndex, nullptr))
        index->stop();
    return true;
}

int PDFDocument::pageCount() const
{
    return m_handle->isLocked ? 0 : m_handle->pageCount.load();
}

std::shared_ptr<PDFPage> PDFDocument::page(int index)
{
    // Declared first, so that it is destroyed after the lock is given back: destroying a page takes the lock.
    std::unique_ptr<PageHandle> handle;
    const std::lock_guard lock(m_handle->mutex);
    if (m_handle->isLocked)
        return nullptr;
    if (auto live = m_handle->livePages.value(index).lock())
        return live;

    handle = std::make_unique<PageHandle>(*m_handle);
    CookieScope scope{Cancellation()};
    const auto error = engine::attempt(scope, [&](fz_context* ctx) {
        pdf_obj* object = m_handle->pages.find(ctx, index);
        if (!object)
            fz_throw(ctx, FZ_ERROR_GENERIC, "there is no such page");
        handle->load(ctx, object, index);
    });
    if (error)
        return nullptr;
    std::shared_ptr<PDFPage> page(new PDFPage(shared_from_this(), std::move(handle)));
    m_handle->livePages.insert(index, page);
    return page;
}

int PDFDocument::index(const PDFPage& page) const
{
    return page.m_document.get() == this ? page.index() : -1;
}

bool PDFDocument::isModified() const
{
    return m_handle->changes != m_handle->savedChanges;
}

bool PDFDocument::hasForm() const
{
    return isTrue(*m_handle, fields::hasFields);
}

bool PDFDocument::isXFAOnly() const
{
    return isTrue(*m_handle, fields::isXFAOnly);
}

void PDFDocument::noteChange(const std::shared_ptr<PDFAnnotation>& annotation)
{
    m_handle->annotations.enqueue(annotation);
    m_handle->noteChange();
}

Result<std::monostate>
PDFDocument::write(const QString& path, Overwrite overwrite, const Cancellation& cancellation)
{
    if (auto error = writeDocument(*m_handle, path, overwrite, cancellation))
        return *error;
    return std::monostate();
}

Result<PrintOutcome> PDFDocument::writePrintable(
    const QString& path, const PrintLayout& layout, const Cancellation& cancellation,
    const PrintProgress& progress)
{
    return writePrint(*this, *m_handle, path, layout, cancellation, progress);
}

Result<std::vector<int>> PDFDocument::setFormValue(const FormWidget& widget, const FormValue& value)
{
    const std::lock_guard lock(m_handle->mutex);
    if (m_handle->isLocked)
        return PDFError{PDFError::Code::passwordRequired, QStringLiteral("the document is locked")};
    CookieScope scope{Cancellation()};
    return FormWriter(*m_handle, scope).set(widget, value);
}

} // namespace pdf
