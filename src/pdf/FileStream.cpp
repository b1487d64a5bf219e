// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/FileStream.h"

#include "pdf/CookieScope.h"
#include "pdf/SourceFile.h"

#include <array>

namespace pdf {
namespace {

struct FileState
{
    std::shared_ptr<SourceFile> file;
    std::array<unsigned char, 4096> buffer;
};

int next(fz_context* ctx, fz_stream* stream, std::size_t)
{
    // "Try later" is the one error after which MuPDF remembers nothing as damaged.
    if (const CookieScope* scope = CookieScope::current(); scope && scope->isStopped())
        fz_throw(ctx, FZ_ERROR_TRYLATER, "the operation was stopped");

    auto* state = static_cast<FileState*>(stream->state);
    const qint64 size = state->file->read(
        stream->pos, reinterpret_cast<char*>(state->buffer.data()), qint64(state->buffer.size()));
    if (size < 0)
        fz_throw(ctx, FZ_ERROR_GENERIC, "the file cannot be read");
    stream->rp = state->buffer.data();
    stream->wp = state->buffer.data() + size;
    stream->pos += size;
    return size == 0 ? EOF : *stream->rp++;
}

void seek(fz_context* ctx, fz_stream* stream, int64_t offset, int whence)
{
    auto* state = static_cast<FileState*>(stream->state);
    const qint64 position = whence == SEEK_END ? state->file->size() + offset : offset;
    if (position < 0)
        fz_throw(ctx, FZ_ERROR_GENERIC, "the file cannot be read");
    stream->pos = position;
    stream->rp = state->buffer.data();
    stream->wp = state->buffer.data();
}

void drop(fz_context*, void* state)
{
    delete static_cast<FileState*>(state);
}

} // namespace

fz_stream* newFileStream(fz_context* ctx, const std::shared_ptr<SourceFile>& file)
{
    // MuPDF drops the state itself when it cannot make the stream.
    fz_stream* stream = fz_new_stream(ctx, new FileState{file, {}}, next, drop);
    stream->seek = seek;
    return stream;
}

} // namespace pdf
