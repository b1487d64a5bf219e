// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/PrintComposer.h"

#include "pdf/ContentStream.h"
#include "pdf/Engine.h"
#include "pdf/Handles.h"
#include "pdf/Limits.h"
#include "pdf/PrintedPicture.h"

#include <algorithm>
#include <array>
#include <utility>

namespace pdf {
namespace {

/// What a page that cannot even be measured takes of its sheet is unknown; it stays blank.
constexpr QSizeF unknownPage(612, 792);

/// Where the document allows printing, but nothing that could be taken for the original.
constexpr int coarseResolution = 150;

/// Entries of the catalog that say how pages look: which layers are shown, and which colours are meant.
constexpr std::array catalogEntries = {"OCProperties", "OutputIntents"};

QByteArray reference(int number)
{
    return QByteArray::number(number) + " 0 R";
}

/// The text of an object whose references lead to copies. May throw as MuPDF does; the caller drops it.
fz_buffer* printed(fz_context* ctx, ObjectCopier& copier, pdf_obj* object)
{
    fz_buffer* text = fz_new_buffer(ctx, 256);
    fz_output* out = nullptr;
    fz_var(out);
    fz_try(ctx)
    {
        out = fz_new_output_with_buffer(ctx, text);
        copier.print(ctx, out, object);
        fz_close_output(ctx, out);
    }
    fz_always(ctx)
    {
        fz_drop_output(ctx, out);
    }
    fz_catch(ctx)
    {
        fz_drop_buffer(ctx, text);
        fz_rethrow(ctx);
    }
    return text;
}

/// The content of a page, unpacked and packed again, because it may be in parts and packed in ways that
/// printers do not know. May throw as MuPDF does; the caller drops it.
fz_buffer* packedContent(fz_context* ctx, pdf_document* document, pdf_obj* page)
{
    pdf_obj* contents = pdf_dict_get(ctx, page, PDF_NAME(Contents));
    fz_stream* stream = nullptr;
    fz_buffer* content = nullptr;
    fz_buffer* packed = nullptr;
    fz_var(stream);
    fz_var(content);
    fz_try(ctx)
    {
        if (contents) {
            stream = pdf_open_contents_stream(ctx, document, contents);
            content = fz_read_all(ctx, stream, 4096);
        } else {
            content = fz_new_buffer(ctx, 1);
        }
        std::size_t size = 0;
        unsigned char* data = fz_new_deflated_data_from_buffer(ctx, &size, content, FZ_DEFLATE_BEST_SPEED);
        // Takes the data, also where it fails.
        packed = fz_new_buffer_from_data(ctx, data, size);
    }
    fz_always(ctx)
    {
        fz_drop_stream(ctx, stream);
        fz_drop_buffer(ctx, content);
    }
    fz_catch(ctx)
    {
        fz_rethrow(ctx);
    }
    return packed;
}

bool isPrinted(fz_context* ctx, pdf_document* document, pdf_annot* annotation)
{
    pdf_obj* object = pdf_annot_obj(ctx, annotation);
    const int flags = pdf_dict_get_int(ctx, object, PDF_NAME(F));
    return (flags & PDF_ANNOT_IS_PRINT) && !(flags & PDF_ANNOT_IS_HIDDEN) &&
           !pdf_name_eq(ctx, pdf_dict_get(ctx, object, PDF_NAME(Subtype)), PDF_NAME(Popup)) &&
           !pdf_is_ocg_hidden(ctx, document, nullptr, "Print", pdf_dict_get(ctx, object, PDF_NAME(OC)));
}

std::size_t copyCount(const PrintLayout& layout)
{
    return static_cast<std::size_t>(std::max(1, layout.copies));
}

/// In page space.
QRectF visiblePart(const PageGeometry& geometry)
{
    const fz_rect rect = fz_transform_rect(geometry.displayRect, fz_invert_matrix(geometry.pageToDisplay));
    return {QPointF(rect.x0, rect.y0), QPointF(rect.x1, rect.y1)};
}

PDFError refused(const QString& message)
{
    return {PDFError::Code::refused, message};
}

} // namespace

PrintComposer::PrintComposer(
    PDFDocument& document, DocumentHandle& handle, const PrintLayout& layout, FileReplacement& file,
    const Cancellation& cancellation)
    : m_document(document)
    , m_handle(handle)
    , m_layout(layout)
    , m_target(file)
    , m_file(file)
    , m_copier(handle.document, m_file)
    , m_cancellation(cancellation)
{}

Result<PrintOutcome> PrintComposer::compose(const PDFDocument::PrintProgress& progress)
{
    if (auto error = readDocument())
        return *error;
    const std::vector<int> pages = sheets();
    const auto total = static_cast<int>(pages.size());
    for (int i = 0; i < total; ++i) {
        const Composed& page = composed(pages[static_cast<std::size_t>(i)]);
        m_file.addSheet(page.paper, page.entries);
        if (auto error = m_target.error())
            return *error;
        if (m_cancellation.isCancelled())
            return PDFError{PDFError::Code::cancelled, QStringLiteral("the operation was cancelled")};
        if (progress)
            progress(i + 1, total);
    }
    copyPending();
    m_file.finish(m_catalog);
    return PrintOutcome{total, {m_damagedPages.begin(), m_damagedPages.end()}};
}

std::vector<int> PrintComposer::sheets() const
{
    std::vector<int> result;
    const std::size_t copies = copyCount(m_layout);
    if (m_layout.collates) {
        for (std::size_t copy = 0; copy < copies; ++copy)
            result.insert(result.end(), m_layout.pages.begin(), m_layout.pages.end());
    } else {
        for (const int page : m_layout.pages)
            result.insert(result.end(), copies, page);
    }
    if (m_layout.reverses)
        std::reverse(result.begin(), result.end());
    return result;
}

std::optional<PDFError> PrintComposer::readDocument()
{
    const std::lock_guard lock(m_handle.mutex);
    CookieScope scope(m_cancellation, limits::printedPage);
    // What could not be brought up to date waits for the next attempt; the rest is printed all the same.
    static_cast<void>(m_handle.annotations.flush(scope));
    int permissions = 0;
    if (auto error = engine::attempt(
            scope, [&](fz_context* ctx) { permissions = pdf_document_permissions(ctx, m_handle.document); }))
        return error;
    if (!m_handle.isOwner) {
        if (!(permissions & PDF_PERM_PRINT))
            return refused(QStringLiteral("the document does not allow printing"));
        m_onlyPictures = !(permissions & PDF_PERM_PRINT_HQ);
    }
    for (const char* key : catalogEntries) {
        QByteArray text;
        const auto error = engine::attempt(scope, [&](fz_context* ctx) {
            pdf_obj* root = pdf_dict_get(ctx, pdf_trailer(ctx, m_handle.document), PDF_NAME(Root));
            if (pdf_obj* value = pdf_dict_gets(ctx, root, key))
                engine::takeBytes(ctx, printed(ctx, m_copier, value), text);
        });
        if (!error && !text.isEmpty())
            m_catalog += '/' + QByteArray(key) + ' ' + text + ' ';
    }
    // The pages are made for the paper as they are.
    m_catalog += "/ViewerPreferences << /PrintScaling /None >>";
    return std::nullopt;
}

const PrintComposer::Composed& PrintComposer::composed(int index)
{
    const auto known = m_composed.find(index);
    if (known != m_composed.end())
        return known->second;
    return m_composed.emplace(index, composePage(index)).first->second;
}

PrintComposer::Composed PrintComposer::composePage(int index)
{
    const auto page = m_document.page(index);
    if (!page) {
        m_damagedPages.insert(index);
        return {placeOnSheet(m_layout, unknownPage).paper, {}};
    }
    PageHandle& handle = *page->m_handle;
    const SheetPlacement placement = placeOnSheet(m_layout, page->displaySize());
    const int content = addContent(*page, placement.scale);
    copyAnnotations(handle);

    const QTransform toSheet = page->pageToDisplay() * placement.displayToSheet;
    const auto append = [](ContentStream& stream, const QTransform& matrix) {
        stream.add({matrix.m11(), matrix.m12(), matrix.m21(), matrix.m22(), matrix.dx(), matrix.dy()}, "cm");
    };
    ContentStream stream;
    QByteArray forms;
    append(stream, toSheet);
    stream.addRectangle(visiblePart(handle.geometry()), "W n");
    if (content != 0) {
        forms += "/Page " + reference(content) + ' ';
        stream.addRaw("/Page Do");
    } else {
        m_damagedPages.insert(index);
    }
    for (std::size_t i = 0; i < m_appearances.size(); ++i) {
        const auto& [form, m] = m_appearances[i];
        const QByteArray name = "/Note" + QByteArray::number(static_cast<qint64>(i));
        forms += name + ' ' + reference(form) + ' ';
        stream.addRaw("q");
        append(stream, {m.a, m.b, m.c, m.d, m.e, m.f});
        stream.addRaw(name + " Do\nQ");
    }
    const int contents = m_file.newObject();
    const int resources = m_file.newObject();
    m_file.addStream(contents, {}, stream.bytes());
    m_file.addObject(resources, "<< /XObject << " + forms + ">> >>");
    return {
        placement.paper,
        groupOf(handle) + "/Contents " + reference(contents) + " /Resources " + reference(resources)};
}

int PrintComposer::addContent(PDFPage& page, double scale)
{
    if (!m_onlyPictures) {
        if (const int form = copyContent(*page.m_handle))
            return form;
    }
    const int resolution =
        m_onlyPictures ? std::min(coarseResolution, m_layout.resolution) : m_layout.resolution;
    constexpr double pointsPerInch = 72;
    const auto form = addPicture(m_file, page, resolution / pointsPerInch * scale, m_cancellation);
    return form ? *form : 0;
}

int PrintComposer::copyContent(PageHandle& page)
{
    const std::lock_guard lock(m_handle.mutex);
    CookieScope scope(m_cancellation, limits::printedPage);
    const QRectF visible = visiblePart(page.geometry());
    QByteArray box;
    for (const double edge : {visible.left(), visible.top(), visible.right(), visible.bottom()})
        box += contentNumber(edge) + ' ';
    const int form = m_file.newObject();
    const auto error = engine::attempt(scope, [&](fz_context* ctx) {
        writeContent(ctx, page.object, box.constData(), form);
        m_copier.writePending(ctx);
    });
    return error ? 0 : form;
}

/// May throw as MuPDF does.
void PrintComposer::writeContent(fz_context* ctx, pdf_obj* page, const char* box, int form)
{
    fz_buffer* content = nullptr;
    fz_buffer* text = nullptr;
    fz_buffer* resources = nullptr;
    fz_var(content);
    fz_var(text);
    fz_var(resources);
    fz_try(ctx)
    {
        content = packedContent(ctx, m_handle.document, page);
        unsigned char* data = nullptr;
        const std::size_t size = fz_buffer_storage(ctx, content, &data);
        pdf_obj* used = pdf_dict_get_inheritable(ctx, page, PDF_NAME(Resources));
        text = fz_new_buffer(ctx, 256);
        fz_append_printf(
            ctx, text, "<</Type/XObject/Subtype/Form/BBox[%s]/Filter/FlateDecode/Length %d", box,
            static_cast<int>(size));
        if (used) {
            resources = printed(ctx, m_copier, used);
            fz_append_string(ctx, text, "/Resources ");
            fz_append_buffer(ctx, text, resources);
        }
        fz_append_string(ctx, text, ">>\nstream\n");

        // From where the form has begun nothing throws, so it is written whole or not at all.
        unsigned char* head = nullptr;
        const std::size_t headSize = fz_buffer_storage(ctx, text, &head);
        engine::translated(ctx, [&] { m_file.beginObject(form); });
        m_file.append(reinterpret_cast<const char*>(head), headSize);
        m_file.append(reinterpret_cast<const char*>(data), size);
        m_file.append("\nendstream", 10);
        m_file.endObject();
    }
    fz_always(ctx)
    {
        fz_drop_buffer(ctx, content);
        fz_drop_buffer(ctx, text);
        fz_drop_buffer(ctx, resources);
    }
    fz_catch(ctx)
    {
        fz_rethrow(ctx);
    }
}

/// What cannot be copied is left out.
void PrintComposer::copyAnnotations(PageHandle& page)
{
    m_appearances.clear();
    const std::lock_guard lock(m_handle.mutex);
    CookieScope scope(m_cancellation, limits::printedPage);
    static_cast<void>(engine::attempt(scope, [&](fz_context* ctx) {
        pdf_page* loaded = page.loadContents(ctx);
        addAppearances(ctx, pdf_first_annot(ctx, loaded));
        addAppearances(ctx, pdf_first_widget(ctx, loaded));
    }));
    m_copier.forgetLocalObjects();
}

void PrintComposer::addAppearances(fz_context* ctx, pdf_annot* first)
{
    for (pdf_annot* annotation = first; annotation; annotation = pdf_next_annot(ctx, annotation)) {
        if (isPrinted(ctx, m_handle.document, annotation))
            addAppearance(ctx, annotation);
    }
}

void PrintComposer::addAppearance(fz_context* ctx, pdf_annot* annotation)
{
    // Where an annotation has no appearance, MuPDF has made one up, outside of the document proper.
    pdf_annot_push_local_xref(ctx, annotation);
    fz_try(ctx)
    {
        pdf_obj* form = pdf_annot_ap(ctx, annotation);
        if (pdf_is_indirect(ctx, form) && pdf_is_stream(ctx, form)) {
            const fz_matrix matrix = pdf_annot_transform(ctx, annotation);
            const int copy = m_copier.copyOf(ctx, form, true);
            engine::translated(ctx, [&] { m_appearances.push_back({copy, matrix}); });
        }
        m_copier.writePending(ctx);
    }
    fz_always(ctx)
    {
        pdf_annot_pop_local_xref(ctx, annotation);
    }
    fz_catch(ctx)
    {
        engine::rethrowUnlessDamage(ctx);
    }
}

void PrintComposer::copyPending()
{
    const std::lock_guard lock(m_handle.mutex);
    CookieScope scope(m_cancellation, limits::printedPage);
    static_cast<void>(engine::attempt(scope, [&](fz_context* ctx) { m_copier.writePending(ctx); }));
}

/// The sheet blends as the page does.
QByteArray PrintComposer::groupOf(PageHandle& page)
{
    const std::lock_guard lock(m_handle.mutex);
    CookieScope scope(m_cancellation, limits::printedPage);
    QByteArray text;
    const auto error = engine::attempt(scope, [&](fz_context* ctx) {
        if (pdf_obj* group = pdf_dict_get(ctx, page.object, PDF_NAME(Group)))
            engine::takeBytes(ctx, printed(ctx, m_copier, group), text);
        m_copier.writePending(ctx);
    });
    return error || text.isEmpty() ? QByteArray() : "/Group " + text + ' ';
}

Result<PrintOutcome> writePrint(
    PDFDocument& document, DocumentHandle& handle, const QString& path, const PrintLayout& layout,
    const Cancellation& cancellation, const PDFDocument::PrintProgress& progress)
{
    if (handle.isLocked)
        return PDFError{PDFError::Code::passwordRequired, QStringLiteral("the document is locked")};
    if (layout.pages.empty())
        return refused(QStringLiteral("there are no pages to print"));
    if (copyCount(layout) > limits::printedSheets / layout.pages.size())
        return PDFError{PDFError::Code::limitExceeded, QStringLiteral("there are too many sheets to print")};
    const QString target = FileReplacement::resolved(path);
    if (target.isEmpty())
        return PDFError{PDFError::Code::unwritable, QStringLiteral("the file is a link to itself")};
    if (target == FileReplacement::resolved(handle.path))
        return refused(QStringLiteral("a document is not printed over its own file"));
    auto begun = FileReplacement::begin(target);
    if (!begun)
        return begun.error();
    FileReplacement& file = **begun;
    auto outcome = PrintComposer(document, handle, layout, file, cancellation).compose(progress);
    if (!outcome)
        return outcome;
    // What was read after somebody wrote into the file is not what was opened.
    if (!handle.source->isIntact())
        return changedMeanwhile();
    if (auto error = file.commit(std::nullopt))
        return *error;
    return outcome;
}

} // namespace pdf
