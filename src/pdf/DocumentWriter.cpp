// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/DocumentWriter.h"

#include "pdf/Engine.h"
#include "pdf/FileReplacement.h"
#include "pdf/Handles.h"
#include "pdf/Limits.h"
#include "pdf/ObjectWriter.h"

#include <vector>

namespace pdf {
namespace {

constexpr std::size_t chunkSize = std::size_t{1} << 20;
constexpr int outputBuffer = 64 << 10;

// What went wrong is known to the file; "try later" ends the writing without marking anything as damaged.
void writeBytes(fz_context* ctx, void* state, const void* data, std::size_t size)
{
    if (CookieScope::current()->isStopped())
        fz_throw(ctx, FZ_ERROR_TRYLATER, "the operation was stopped");
    if (!static_cast<FileReplacement*>(state)->write(static_cast<const char*>(data), size))
        fz_throw(ctx, FZ_ERROR_TRYLATER, "the file cannot be written");
}

int64_t position(fz_context*, void* state)
{
    return static_cast<FileReplacement*>(state)->position();
}

/// Lets MuPDF write to a file, from its present end on.
fz_output* newOutput(fz_context* ctx, FileReplacement& file)
{
    fz_output* out = fz_new_output(ctx, outputBuffer, &file, writeBytes, nullptr, nullptr);
    out->tell = position;
    return out;
}

std::optional<PDFError> copySource(const SourceFile& source, FileReplacement& file, const CookieScope& scope)
{
    std::vector<char> chunk(chunkSize);
    for (qint64 offset = 0; offset < source.size();) {
        const qint64 count = source.read(offset, chunk.data(), qint64(chunk.size()));
        if (count <= 0)
            return source.isIntact()
                       ? PDFError{PDFError::Code::unreadable, QStringLiteral("the file cannot be read")}
                       : changedMeanwhile();
        if (!file.write(chunk.data(), static_cast<std::size_t>(count)))
            return file.error();
        if (auto interruption = scope.interruption())
            return interruption;
        offset += count;
    }
    return std::nullopt;
}

/// Under the document's lock.
std::optional<PDFError>
writeObjects(DocumentHandle& document, FileReplacement& file, CookieScope& scope, bool asUpdate)
{
    ObjectWriter writer(document.document);
    auto error = engine::attempt(scope, [&](fz_context* ctx) {
        fz_output* out = newOutput(ctx, file);
        fz_try(ctx)
        {
            if (asUpdate) {
                writer.writeUpdate(ctx, out);
            } else {
                document.pages.plant(ctx);
                writer.writeDocument(ctx, out);
            }
            fz_close_output(ctx, out);
        }
        fz_always(ctx)
        {
            fz_drop_output(ctx, out);
        }
        fz_catch(ctx)
        {
            fz_rethrow(ctx);
        }
    });
    return file.error() ? file.error() : error;
}

std::optional<PDFError>
writeContent(DocumentHandle& document, FileReplacement& file, CookieScope& scope, std::uint64_t& changes)
{
    const auto canUpdate = [&document] {
        // A tree for pages that have none is part of a whole new file only.
        return !document.pages.isMissing() && ObjectWriter::canUpdate(document.document);
    };
    const auto canUpdateNow = [&] {
        const std::lock_guard lock(document.mutex);
        return canUpdate();
    };
    if (canUpdateNow()) {
        if (auto error = copySource(*document.source, file, scope))
            return error;
    }
    const std::lock_guard lock(document.mutex);
    if (auto error = document.annotations.flush(scope))
        return error;
    changes = document.changes;
    // Reading a page meanwhile may have come upon damage, and repaired the document.
    const bool asUpdate = canUpdate();
    if (!asUpdate)
        file.restart();
    if (document.isLocked) {
        if (asUpdate)
            return std::nullopt;
        return PDFError{PDFError::Code::passwordRequired, QStringLiteral("the document is locked")};
    }
    return writeObjects(document, file, scope, asUpdate);
}

} // namespace

std::optional<PDFError> writeDocument(
    DocumentHandle& document, const QString& path, Overwrite overwrite, const Cancellation& cancellation)
{
    const std::lock_guard writing(document.writing);
    const QString target = FileReplacement::resolved(path);
    if (target.isEmpty())
        return PDFError{PDFError::Code::unwritable, QStringLiteral("the file is a link to itself")};
    const bool isOwnFile = target == FileReplacement::resolved(document.path);
    std::optional<FileIdentity> expected;
    if (isOwnFile && overwrite == Overwrite::unlessChanged) {
        expected = document.ownFile;
        const auto current = FileIdentity::of(target);
        if (current && !(*current == *expected))
            return changedMeanwhile();
    }
    auto begun = FileReplacement::begin(target);
    if (!begun)
        return begun.error();
    FileReplacement& file = **begun;

    CookieScope scope(cancellation, limits::saving);
    std::uint64_t changes = 0;
    if (auto error = writeContent(document, file, scope, changes))
        return error;
    // What was read after somebody wrote into the file is not what was opened.
    if (!document.source->isIntact())
        return changedMeanwhile();
    auto error = file.commit(expected);
    if (isOwnFile && file.installed()) {
        document.ownFile = *file.installed();
        if (!error)
            document.savedChanges = changes;
    }
    return error;
}

} // namespace pdf
